#pragma once

#include <string>

/// A number as its shortest decimal that reads back as the same double, whatever the process's locale:
/// "12.5", "1e-07", "nan".
std::string ShortestDecimal(double number);

/// The same rounded to so many significant digits.
std::string RoundedDecimal(double number, int digits = 6);
