#include "wire/Crc32c.h"

#include <algorithm>

#include <isa-l/crc.h>

void Crc32c::Take(const void* data, std::size_t size) {
    constexpr std::size_t kMaxPiece = std::size_t{1} << 30U; // the library counts with int
    // It takes a pointer to bytes that may change, and changes none.
    auto* bytes = static_cast<unsigned char*>(const_cast<void*>(data));
    for (std::size_t piece = 0; size > 0; bytes += piece, size -= piece) {
        piece = std::min(size, kMaxPiece);
        state = crc32_iscsi(bytes, static_cast<int>(piece), state);
    }
}
