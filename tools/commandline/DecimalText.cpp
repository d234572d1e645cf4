#include "tools/commandline/DecimalText.h"

#include <array>
#include <charconv>

namespace {

constexpr std::size_t kLongestDecimal = 32;

} // namespace

std::string ShortestDecimal(double number) {
    std::array<char, kLongestDecimal> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

std::string RoundedDecimal(double number, int digits) {
    std::array<char, kLongestDecimal> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits);
    return {text.data(), result.ptr};
}
