#include "samples/Decimal.h"

std::string Decimal(std::int64_t value, int places) {
    std::string digits = std::to_string(value < 0 ? -value : value);
    const auto fraction = static_cast<std::size_t>(places);
    if (digits.size() <= fraction)
        digits.insert(0, fraction + 1 - digits.size(), '0');
    digits.insert(digits.size() - fraction, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.')
        digits.pop_back();
    return value < 0 ? "-" + digits : digits;
}
