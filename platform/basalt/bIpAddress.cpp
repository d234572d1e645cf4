#include "basalt/bIpAddress.h"

#include <charconv>
#include <string>
#include <string_view>

namespace {

/// Takes one number off the front of `text`; false unless it is from 0 to 255 without leading zeros.
bool TakeOctet(std::string_view& text, std::uint8_t& octet) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), octet);
    if (error != std::errc())
        return false;
    const auto length = static_cast<std::size_t>(end - text.data());
    const bool leadingZero = length > 1 && text.front() == '0';
    text.remove_prefix(length);
    return !leadingZero;
}

bool TakeDot(std::string_view& text) {
    if (text.empty() || text.front() != '.')
        return false;
    text.remove_prefix(1);
    return true;
}

} // namespace

bStatus bIpAddress_Parse(bIpAddress* address, const char* text) {
    if (address == nullptr || text == nullptr)
        return bERROR_PARAMETER;
    std::string_view rest(text);
    bIpAddress read;
    for (std::size_t i = 0; i < read.octets.size(); ++i)
        if ((i > 0 && !TakeDot(rest)) || !TakeOctet(rest, read.octets.at(i)))
            return bERROR_PARAMETER;
    if (!rest.empty())
        return bERROR_PARAMETER;
    *address = read;
    return bOK;
}

bStatus bIpAddress_Format(bIpAddress address, char* text, std::size_t capacity) {
    std::string dotted;
    for (const std::uint8_t octet : address.octets)
        dotted += (dotted.empty() ? "" : ".") + std::to_string(octet);
    if (text == nullptr || capacity <= dotted.size())
        return bERROR_PARAMETER;
    dotted.copy(text, dotted.size());
    text[dotted.size()] = '\0';
    return bOK;
}
