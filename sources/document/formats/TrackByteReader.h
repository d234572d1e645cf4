#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <type_traits>

static_assert(std::endian::native == std::endian::little, "binary track files are little-endian");

/// A file read from front to back as numbers without padding between them. Every read is checked against the
/// bytes that the file holds.
class TrackByteReader {
  public:
    /// Only regular files are opened; ask IsOpen. One that is not open has no bytes.
    explicit TrackByteReader(const std::string& path);

    [[nodiscard]] bool IsOpen() const { return file.is_open(); }

    /// How many bytes stand between the reading place and the end of the file.
    [[nodiscard]] std::int64_t Remaining() const { return size - place; }

    /// @throws std::runtime_error when the file ends within the number.
    template<typename Number>
    [[nodiscard]] Number Read() {
        static_assert(std::is_arithmetic_v<Number>);
        Number number{};
        Read(&number, sizeof number);
        return number;
    }

    /// @throws std::runtime_error when the file ends within these bytes.
    void Read(void* bytes, std::size_t count);

    /// Passes over bytes. @throws std::runtime_error when there are fewer, or `count` is negative.
    void Skip(std::int64_t count);

  private:
    void RequireRemaining(std::int64_t count) const;

    std::ifstream file;
    std::int64_t size = 0;
    std::int64_t place = 0;
};
