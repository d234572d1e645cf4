#include "wire/Crc32c.h"

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

constexpr std::uint32_t ContinueByte(std::uint32_t state, std::uint8_t byte) {
    return (state >> kByteBits) ^ kTables[0][(state ^ byte) & 0xFFU];
}

#ifdef CRC32C_INSTRUCTION

// The instruction gives a result every cycle, but only after three: three stretches at once keep it busy.
constexpr std::size_t kStretch = 4096; // a power of two

/// What bytes of zeros do to a state that has one bit set, for each bit; it is linear in the bits.
using Effect = std::array<std::uint32_t, 32>;

constexpr std::uint32_t Apply(const Effect& effect, std::uint32_t state) {
    std::uint32_t after = 0;
    for (const std::uint32_t ofBit : effect) {
        after ^= (state & 1U) != 0 ? ofBit : 0U;
        state >>= 1U;
    }
    return after;
}

constexpr Effect OfOneStretch() {
    Effect effect{};
    for (unsigned bit = 0; bit < effect.size(); ++bit)
        effect[bit] = ContinueByte(1U << bit, 0);
    for (std::size_t zeros = 1; zeros < kStretch; zeros *= 2) {
        const Effect half = effect;
        for (std::uint32_t& ofBit : effect)
            ofBit = Apply(half, ofBit);
    }
    return effect;
}

/// The effect of a stretch of zeros, by byte of the state and the byte's value.
constexpr std::array<Table, sizeof(std::uint32_t)> MakeStretchTables() {
    constexpr Effect kEffect = OfOneStretch();
    std::array<Table, sizeof(std::uint32_t)> tables{};
    for (unsigned i = 0; i < tables.size(); ++i)
        for (std::uint32_t byte = 0; byte < tables[i].size(); ++byte)
            tables[i][byte] = Apply(kEffect, byte << (kByteBits * i));
    return tables;
}

constexpr std::array<Table, sizeof(std::uint32_t)> kStretchTables = MakeStretchTables();

std::uint32_t AfterStretchOfZeros(std::uint32_t state) {
    std::uint32_t after = 0;
    for (std::size_t i = 0; i < kStretchTables.size(); ++i)
        after ^= kStretchTables[i][state >> (kByteBits * i) & 0xFFU];
    return after;
}

std::uint64_t WordAt(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

__attribute__((target("sse4.2"))) std::uint32_t ContinueByStretches(std::uint32_t state,
                                                                    const std::uint8_t* bytes) {
    std::uint64_t first = state;
    std::uint64_t second = 0;
    std::uint64_t third = 0;
    for (const std::uint8_t* const end = bytes + kStretch; bytes < end; bytes += sizeof(std::uint64_t)) {
        first = _mm_crc32_u64(first, WordAt(bytes));
        second = _mm_crc32_u64(second, WordAt(bytes + kStretch));
        third = _mm_crc32_u64(third, WordAt(bytes + 2 * kStretch));
    }
    const std::uint32_t both =
        AfterStretchOfZeros(static_cast<std::uint32_t>(first)) ^ static_cast<std::uint32_t>(second);
    return AfterStretchOfZeros(both) ^ static_cast<std::uint32_t>(third);
}

__attribute__((target("sse4.2"))) std::uint32_t
ContinueByInstruction(std::uint32_t state, const std::uint8_t* bytes, std::size_t size) {
    for (; size >= 3 * kStretch; bytes += 3 * kStretch, size -= 3 * kStretch)
        state = ContinueByStretches(state, bytes);
    std::uint64_t wide = state;
    for (; size >= sizeof(std::uint64_t); bytes += sizeof(std::uint64_t), size -= sizeof(std::uint64_t))
        wide = _mm_crc32_u64(wide, WordAt(bytes));
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
