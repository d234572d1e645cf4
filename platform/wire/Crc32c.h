#pragma once

#include <cstddef>
#include <cstdint>

/// The checksum CRC-32C (Castagnoli) of bytes that come piece by piece. It finds what a faulty network or
/// memory does to data, every burst of up to 32 bits among it; it is no protection against intent.
class Crc32c final {
  public:
    void Take(const void* data, std::size_t size) { state = Continue(state, data, size); }

    /// Of all bytes taken so far.
    [[nodiscard]] std::uint32_t Value() const { return ~state; }

    /// Whether the processor computes it; otherwise tables do, several times slower and to the same result.
    [[nodiscard]] static bool IsInHardware();

    /// The way by tables, for comparing: the state after the bytes (0xFFFFFFFF before the first one).
    [[nodiscard]] static std::uint32_t ContinueByTables(std::uint32_t state, const void* data,
                                                        std::size_t size);

  private:
    [[nodiscard]] static std::uint32_t Continue(std::uint32_t state, const void* data, std::size_t size);

    std::uint32_t state = 0xFFFFFFFFU;
};
