#pragma once

#include <cstdint>
#include <string>

/// The number `value` / 10^`places` in decimal digits, without needless zeros: Decimal(-1250, 3) is "-1.25".
std::string Decimal(std::int64_t value, int places);
