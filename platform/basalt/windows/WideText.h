#pragma once

#include <optional>
#include <string>
#include <string_view>

/// UTF-8 as the system's calls take it; nothing when it is not valid.
[[nodiscard]] std::optional<std::wstring> WideOf(std::string_view text);
/// Back from the system; nothing for what is no valid UTF-16, which names on a disk may hold.
[[nodiscard]] std::optional<std::string> Utf8Of(std::wstring_view text);

/// A path as the system's calls take it at any length: from the root on, with "\" between its names and a
/// prefix that switches off the limit of 260 characters. Nothing for invalid UTF-8.
[[nodiscard]] std::optional<std::wstring> LongPathOf(std::string_view path);
/// A path from the system, without such a prefix and with "/" between its names.
[[nodiscard]] std::string PathFromSystem(std::wstring_view path);
