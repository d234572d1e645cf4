#pragma once

#include <cstdint>

// What the C library reads at the start of a text in the C locale, whatever the process's locale is: leading
// blanks are skipped, and what follows the number is ignored.

/// As `strtod`; 0 for what is no number.
[[nodiscard]] double PlainDouble(const char* text);
/// As `strtoll` for decimals; the nearest number of 64 bits for those beyond.
[[nodiscard]] std::int64_t PlainInteger(const char* text);
