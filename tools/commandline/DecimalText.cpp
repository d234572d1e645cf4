#include "tools/commandline/DecimalText.h"

#include <array>
#include <charconv>
#include <system_error>

namespace {

constexpr std::size_t kMaxDecimalLength = 32;

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

template<typename Number>
std::optional<Number> Parse(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    Number number{};
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

} // namespace

std::string ShortestDecimal(double number) {
    std::array<char, kMaxDecimalLength> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

std::string RoundedDecimal(double number, int digits) {
    std::array<char, kMaxDecimalLength> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits);
    return {text.data(), result.ptr};
}

std::optional<double> ParseNumber(std::string_view text) {
    return Parse<double>(text);
}

std::optional<std::int32_t> ParseInteger(std::string_view text) {
    return Parse<std::int32_t>(text);
}
