#pragma once

#include <cstdint>
#include <string>

namespace independent {

/// CRC-32C bit by bit, from the polynomial.
inline std::uint32_t SlowCrc32c(const std::string& bytes) {
    std::uint32_t state = 0xFFFFFFFFU;
    for (const char letter : bytes) {
        state ^= static_cast<unsigned char>(letter);
        for (int bit = 0; bit < 8; ++bit)
            state = (state >> 1U) ^ ((state & 1U) != 0 ? 0x82F63B78U : 0U);
    }
    return ~state;
}

} // namespace independent
