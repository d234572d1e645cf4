#pragma once

#include <ctime>
#include <optional>

/// A moment by the user's clock; nothing for one that the calendar does not reach.
[[nodiscard]] std::optional<std::tm> LocalTime(std::time_t moment);
