#include "Crc32c.h"

#include <array>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define CRC32C_INSTRUCTION 1
#include <nmmintrin.h>
#endif

namespace {

constexpr std::uint32_t kPolynomial = 0x82F63B78U; // bits reversed
constexpr std::size_t kSlices = 8;
constexpr unsigned kByteBits = 8;

using Table = std::array<std::uint32_t, 256>;

/// Table k tells what a byte does to the state when k further bytes of zeros follow it.
constexpr std::array<Table, kSlices> MakeTables() {
    std::array<Table, kSlices> tables{};
    for (std::uint32_t byte = 0; byte < tables[0].size(); ++byte) {
        std::uint32_t state = byte;
        for (unsigned bit = 0; bit < kByteBits; ++bit)
            state = (state >> 1U) ^ ((state & 1U) != 0 ? kPolynomial : 0U);
        tables[0][byte] = state;
    }
    for (std::size_t slice = 1; slice < kSlices; ++slice) {
        for (std::size_t byte = 0; byte < tables[0].size(); ++byte) {
            const std::uint32_t before = tables[slice - 1][byte];
            tables[slice][byte] = (before >> kByteBits) ^ tables[0][before & 0xFFU];
        }
    }
    return tables;
}

constexpr std::array<Table, kSlices> kTables = MakeTables();

std::uint32_t ContinueByte(std::uint32_t state, std::uint8_t byte) {
    return (state >> kByteBits) ^ kTables[0][(state ^ byte) & 0xFFU];
}

#ifdef CRC32C_INSTRUCTION

__attribute__((target("sse4.2"))) std::uint32_t
ContinueByInstruction(std::uint32_t state, const std::uint8_t* bytes, std::size_t size) {
    std::uint64_t wide = state;
    for (; size >= sizeof(std::uint64_t); bytes += sizeof(std::uint64_t), size -= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, sizeof(word));
        wide = _mm_crc32_u64(wide, word);
    }
    state = static_cast<std::uint32_t>(wide);
    for (; size > 0; ++bytes, --size)
        state = _mm_crc32_u8(state, *bytes);
    return state;
}

#endif

} // namespace

bool Crc32c::IsInHardware() {
#ifdef CRC32C_INSTRUCTION
    static const bool known = __builtin_cpu_supports("sse4.2") != 0;
    return known;
#else
    return false;
#endif
}

std::uint32_t Crc32c::ContinueByTables(std::uint32_t state, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    for (; size >= kSlices; bytes += kSlices, size -= kSlices) {
        std::uint32_t next = 0;
        for (std::size_t i = 0; i < kSlices; ++i) {
            const std::uint32_t mixed = i < sizeof(state) ? state >> (kByteBits * i) : 0U;
            next ^= kTables[kSlices - 1 - i][(bytes[i] ^ mixed) & 0xFFU];
        }
        state = next;
    }
    for (; size > 0; ++bytes, --size)
        state = ContinueByte(state, *bytes);
    return state;
}

std::uint32_t Crc32c::Continue(std::uint32_t state, const void* data, std::size_t size) {
#ifdef CRC32C_INSTRUCTION
    if (IsInHardware())
        return ContinueByInstruction(state, static_cast<const std::uint8_t*>(data), size);
#endif
    return ContinueByTables(state, data, size);
}
