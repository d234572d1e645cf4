#include "basalt/SystemCalls.h"

#include <cstdlib>

// The process's locale is the C locale here: neither the system nor Qt changes it at the start, whatever the
// region of the user. The library's forms with a locale of their own know neither infinity nor hexadecimal
// numbers.

double PlainDouble(const char* text) {
    return std::strtod(text, nullptr);
}

std::int64_t PlainInteger(const char* text) {
    constexpr int kDecimal = 10;
    return std::strtoll(text, nullptr, kDecimal);
}
