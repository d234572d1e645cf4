#include "document/formats/NumberText.h"

#include "basalt/SystemCalls.h"

#include <charconv>
#include <string>
#include <system_error>

namespace {

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Whether the text starts as a number that std::from_chars and the C library read alike: it may start with a
/// minus, but with no blank, plus, word ("inf", "nan") or hexadecimal prefix.
bool StartsDecimal(std::string_view text) {
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    if (text.empty() || (!IsDigit(text[0]) && text[0] != '.'))
        return false;
    return text.size() < 2 || (text[1] != 'x' && text[1] != 'X');
}

} // namespace

double ToDouble(std::string_view text) {
    const char* const end = text.data() + text.size();
    const ShortDecimal decimal = ReadShortDecimal(text.data(), end);
    if (decimal.exact && decimal.end == end)
        return decimal.value;
    if (StartsDecimal(text)) {
        double value = 0.0;
        if (std::from_chars(text.data(), end, value).ec == std::errc{})
            return value;
    }
    return PlainDouble(std::string(text).c_str());
}

std::int32_t ToInt32(std::string_view text) {
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc{})
        return value;
    return static_cast<std::int32_t>(PlainInteger(std::string(text).c_str()));
}
