#pragma once

#include "basalt/AtomicFile.h"
#include "basalt/InputFile.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

static_assert(std::endian::native == std::endian::little, "binary track files are little-endian");

/// A file read from front to back as numbers without padding between them. Every read is checked against the
/// bytes that the file holds.
class TrackByteReader {
  public:
    /// Only regular files are opened; check IsOpen. One that is not open has no bytes.
    explicit TrackByteReader(const std::string& path);

    [[nodiscard]] bool IsOpen() const { return file.IsOpen(); }

    /// How many bytes are between the reading position and the end of the file.
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

    /// Skips bytes. @throws std::runtime_error when there are fewer, or `count` is negative.
    void Skip(std::int64_t count);

    /// Closes the file, so that it can be replaced on every system. Nothing is read afterwards.
    void Close() { file = InputFile(); }

  private:
    void RequireRemaining(std::int64_t count) const;
    std::size_t TakeBuffered(char* to, std::size_t count);
    std::size_t Fetch(char* to, std::size_t capacity, std::size_t least);
    [[noreturn]] void Fail() const;

    InputFile file;
    std::vector<char> buffer;
    std::size_t taken = 0; ///< bytes at the buffer's front that were read from it
    std::int64_t size = 0;
    std::int64_t place = 0;
};

static_assert(std::endian::native == std::endian::little, "binary track files are little-endian");

/// Appends numbers to a file without padding between them. The file remembers failures.
class TrackByteWriter {
  public:
    /// The file must live as long as the writer.
    explicit TrackByteWriter(AtomicFile& atomicFile) : file(atomicFile) {}

    template<typename Number>
    void Write(Number number) {
        static_assert(std::is_arithmetic_v<Number>);
        file.Write(&number, sizeof number);
    }

    void Write(const void* bytes, std::size_t count) { file.Write(bytes, count); }
    void Write(std::string_view bytes) { file.Write(bytes); }

  private:
    AtomicFile& file;
};
