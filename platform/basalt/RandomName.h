#pragma once

#include <string>
#include <string_view>

/// A name that nobody can predict: `prefix` and six letters or digits.
/// @throws std::bad_alloc
std::string RandomName(std::string_view prefix);
