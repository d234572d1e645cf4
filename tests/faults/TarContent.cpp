#include "TarContent.h"

#include <stdexcept>

namespace {

constexpr std::size_t kBlock = 512;

std::size_t Octal(const std::string& block, std::size_t offset, std::size_t size) {
    return std::stoul(block.substr(offset, size), nullptr, 8);
}

std::string Text(const std::string& block, std::size_t offset, std::size_t size) {
    const std::string field = block.substr(offset, size);
    return field.substr(0, field.find('\0'));
}

void CheckSum(std::string block) {
    constexpr std::size_t kSum = 148;
    const std::size_t expected = Octal(block, kSum, 8);
    block.replace(kSum, 8, 8, ' ');
    std::size_t sum = 0;
    for (const char byte : block)
        sum += static_cast<unsigned char>(byte);
    if (sum != expected)
        throw std::runtime_error("a wrong header checksum");
}

} // namespace

std::map<std::string, std::string> TarContent(const std::string& archive) {
    const std::string zeros(kBlock, '\0');
    std::map<std::string, std::string> files;
    for (std::size_t at = 0;;) {
        if (at + 2 * kBlock > archive.size())
            throw std::runtime_error("the archive is truncated");
        const std::string block = archive.substr(at, kBlock);
        at += kBlock;
        if (block == zeros) {
            if (archive.compare(at, kBlock, zeros) != 0)
                throw std::runtime_error("the end marker is incomplete");
            return files;
        }
        CheckSum(block);
        const std::size_t size = Octal(block, 124, 12);
        if (size > archive.size() - at)
            throw std::runtime_error("an entry is truncated");
        if (block[156] == '0' && !files.emplace(Text(block, 0, 100), archive.substr(at, size)).second)
            throw std::runtime_error("a duplicate entry");
        if (block[156] != '0' && block[156] != '5')
            throw std::runtime_error("an unexpected entry type");
        at += (size + kBlock - 1) / kBlock * kBlock;
    }
}
