// Changes archives as a plain mutator would, but mostly puts the headers' checksums right afterwards: without
// that nearly every change would end at the first wrong checksum.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::size_t kBlock = 512;
constexpr std::size_t kChecksum = 148;
constexpr std::size_t kChecksumSize = 8;
constexpr std::size_t kType = 156;

bool LooksLikeHeader(const std::uint8_t* block) {
    constexpr std::size_t kMagic = 257;
    return std::memcmp(block + kMagic, "ustar", 5) == 0;
}

void PutChecksumRight(std::uint8_t* block) {
    std::memset(block + kChecksum, ' ', kChecksumSize);
    unsigned sum = 0;
    for (std::size_t i = 0; i < kBlock; ++i)
        sum += block[i];
    char digits[kChecksumSize + 1];
    std::snprintf(digits, sizeof digits, "%06o", sum);
    std::memcpy(block + kChecksum, digits, kChecksumSize - 1);
}

/// One typical damage of an archive: another type, a duplicated block, a lost block.
std::size_t ChangeBlocks(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                         std::minstd_rand& random) {
    static constexpr char kTypes[] = "0123456759xgLKSNDMVA\0\0";
    const std::size_t blocks = size / kBlock;
    std::uint8_t* const block = data + random() % blocks * kBlock;
    const std::size_t following = static_cast<std::size_t>(data + size - block);
    switch (random() % 3) {
    case 0:
        block[kType] = static_cast<std::uint8_t>(kTypes[random() % (sizeof kTypes - 1)]);
        return size;
    case 1:
        if (size + kBlock > maxSize)
            return size;
        std::memmove(block + kBlock, block, following);
        return size + kBlock;
    default:
        std::memmove(block, block + kBlock, following - kBlock);
        return size - kBlock;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
    std::minstd_rand random(seed);
    const bool byBlocks = size >= kBlock && random() % 4 == 0;
    size = byBlocks ? ChangeBlocks(data, size, maxSize, random) : LLVMFuzzerMutate(data, size, maxSize);
    if (random() % 8 != 0) {
        for (std::size_t at = 0; at + kBlock <= size; at += kBlock) {
            if (LooksLikeHeader(data + at))
                PutChecksumRight(data + at);
        }
    }
    return size;
}
