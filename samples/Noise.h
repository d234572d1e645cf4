#pragma once

#include <cstdint>

/// Random numbers by place: the same seed and place give the same number on every machine and in any order.
class Noise {
  public:
    explicit Noise(std::uint32_t seed) : seed(seed) {}

    /// Evenly from 0 up to, but not including, 1.
    [[nodiscard]] double At(std::uint32_t row, std::uint32_t column) const;
    /// Mostly near 0, with a deviation of 1; between -3.5 and 3.5.
    [[nodiscard]] double BellAt(int row, std::uint32_t column) const;
    /// Between -1 and 1, changing slowly over a distance of 1. x and y are not negative.
    [[nodiscard]] double SmoothAt(double x, double y) const;

  private:
    [[nodiscard]] std::uint64_t BitsAt(std::uint32_t row, std::uint32_t column, std::uint64_t kind) const;

    std::uint32_t seed;
};
