#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

/// Takes numbers from the end of an input, last byte first; the bytes left at its front are a file.
/// At the end every number is 0.
class InputBytes final {
  public:
    /// The bytes are not copied: they outlive this object.
    InputBytes(const std::uint8_t* data, std::size_t size) : data(data), size(size) {}

    template<typename Integer>
    [[nodiscard]] Integer Take() {
        constexpr unsigned kByteBits = 8;
        std::make_unsigned_t<Integer> value = 0;
        for (std::size_t i = 0; i < sizeof(Integer); ++i)
            value |= static_cast<std::make_unsigned_t<Integer>>(std::uint64_t{TakeByte()} << (i * kByteBits));
        return static_cast<Integer>(value);
    }

    /// From `min` to `max`, which differ by less than 256.
    [[nodiscard]] int TakeInRange(int min, int max) { return min + TakeByte() % (max - min + 1); }

    [[nodiscard]] bool TakeBool() { return (TakeByte() & 1U) != 0; }

    [[nodiscard]] std::string Rest() const { return {reinterpret_cast<const char*>(data), size}; }

  private:
    std::uint8_t TakeByte() { return size == 0 ? std::uint8_t{0} : data[--size]; }

    const std::uint8_t* data;
    std::size_t size;
};
