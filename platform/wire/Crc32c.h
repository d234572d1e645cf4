#pragma once

#include <cstddef>
#include <cstdint>

/// The checksum CRC-32C (Castagnoli) of bytes that come piece by piece. It finds what a faulty network or
/// memory does to data, every burst of up to 32 bits among it; it is no protection against intent.
class Crc32c final {
  public:
    void Take(const void* data, std::size_t size);

    /// Of all bytes taken so far.
    [[nodiscard]] std::uint32_t Value() const { return ~state; }

  private:
    std::uint32_t state = 0xFFFFFFFFU;
};
