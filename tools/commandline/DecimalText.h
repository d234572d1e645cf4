#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The shortest decimal that reads back as the same double, in any locale: "12.5", "1e-07", "nan".
std::string ShortestDecimal(double number);

/// The decimal rounded to this many significant digits.
std::string RoundedDecimal(double number, int digits = 6);

/// The number that the complete text represents, apart from blanks around it; nullopt for any other text,
/// such as "12 mm".
std::optional<double> ParseNumber(std::string_view text);

/// The same for 32-bit integers.
std::optional<std::int32_t> ParseInteger(std::string_view text);
