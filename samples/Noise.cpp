#include "samples/Noise.h"

#include <cmath>

/// The multipliers are odd numbers with their bits well spread; each round lets every bit reach all others.
std::uint64_t Noise::BitsAt(std::uint32_t row, std::uint32_t column, std::uint64_t kind) const {
    std::uint64_t bits = (static_cast<std::uint64_t>(row) << 32U) | column;
    bits ^= (seed + kind * 0x1'0000'0001U) * 0xD6E8'FEB8'6659'FD93U;
    for (int round = 0; round < 3; ++round) {
        bits ^= bits >> 32U;
        bits *= 0xD6E8'FEB8'6659'FD93U;
    }
    return bits ^ (bits >> 32U);
}

double Noise::At(std::uint32_t row, std::uint32_t column) const {
    return static_cast<double>(BitsAt(row, column, 1) >> 32U) / 4294967296.0;
}

/// The sum of four uniform numbers approximates a bell curve; each has a deviation of 65536 / sqrt(12).
double Noise::BellAt(int row, std::uint32_t column) const {
    const std::uint64_t bits = BitsAt(static_cast<std::uint32_t>(row), column, 2);
    const std::uint64_t sum =
        (bits & 0xFFFFU) + ((bits >> 16U) & 0xFFFFU) + ((bits >> 32U) & 0xFFFFU) + (bits >> 48U);
    return (static_cast<double>(sum) - 131070.0) / 37837.0;
}

double Noise::SmoothAt(double x, double y) const {
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto corner = [&](int across, int down) {
        const std::uint64_t bits =
            BitsAt(static_cast<std::uint32_t>(top) + static_cast<std::uint32_t>(down),
                   static_cast<std::uint32_t>(left) + static_cast<std::uint32_t>(across), 3);
        return static_cast<double>(bits >> 32U) / 2147483648.0 - 1.0;
    };
    const auto blend = [](double from, double to, double share) {
        return from + (to - from) * share * share * (3.0 - 2.0 * share);
    };
    return blend(blend(corner(0, 0), corner(1, 0), x - left), blend(corner(0, 1), corner(1, 1), x - left),
                 y - top);
}
