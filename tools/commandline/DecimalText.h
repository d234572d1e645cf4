#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A number as its shortest decimal that reads back as the same double, whatever the process's locale:
/// "12.5", "1e-07", "nan".
std::string ShortestDecimal(double number);

/// The same rounded to so many significant digits.
std::string RoundedDecimal(double number, int digits = 6);

/// The number that a text is from its first to its last character, blanks around it aside; none for any other
/// text, such as "12 mm".
std::optional<double> ParseNumber(std::string_view text);

/// The same for whole numbers that 32 bits hold.
std::optional<std::int32_t> ParseWhole(std::string_view text);
