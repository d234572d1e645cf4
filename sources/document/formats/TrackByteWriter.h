#pragma once

#include "basalt/AtomicFile.h"

#include <bit>
#include <cstddef>
#include <string_view>
#include <type_traits>

static_assert(std::endian::native == std::endian::little, "binary track files are little-endian");

/// Appends numbers to a file without padding between them. Failures are the file's to remember.
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
