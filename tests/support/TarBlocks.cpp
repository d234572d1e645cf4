#include "TarBlocks.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t kBlock = 512;

void Put(std::string& block, std::size_t offset, std::size_t size, std::string_view text) {
    block.replace(offset, std::min(size, text.size()), text.substr(0, size));
}

/// A number as `digits` octal digits and a terminating zero, or in the base-256 form when it is too large.
std::string Number(unsigned long long value, int digits) {
    if (value >> (3 * digits) != 0) {
        std::string bytes(static_cast<std::size_t>(digits) + 1, '\0');
        for (std::size_t i = bytes.size(); i-- > 1; value >>= 8)
            bytes[i] = static_cast<char>(value & 0xFF);
        bytes[0] = static_cast<char>(0x80);
        return bytes;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%0*llo", digits, value);
    return {text, static_cast<std::size_t>(digits) + 1};
}

std::string Padded(std::string content) {
    content.resize((content.size() + kBlock - 1) / kBlock * kBlock, '\0');
    return content;
}

} // namespace

std::string WithTarChecksum(std::string blocks, unsigned error) {
    Put(blocks, 148, 8, "        ");
    unsigned sum = error;
    for (std::size_t i = 0; i < kBlock; ++i)
        sum += static_cast<unsigned char>(blocks[i]);
    Put(blocks, 148, 8, Number(sum, 6) + ' ');
    return blocks;
}

std::string TarBlocks(const TarBlockEntry& entry) {
    std::string block(kBlock, '\0');
    const auto size = entry.size >= 0 ? static_cast<unsigned long long>(entry.size) : entry.content.size();
    Put(block, 0, 100, entry.name);
    Put(block, 100, 8, Number(entry.mode, 7));
    Put(block, 108, 8, Number(0, 7));
    Put(block, 116, 8, Number(0, 7));
    Put(block, 124, 12, Number(size, 11));
    Put(block, 136, 12, Number(1'700'000'000, 11));
    block[156] = entry.type;
    Put(block, 157, 100, entry.link);
    Put(block, 257, 8,
        entry.gnu ? std::string_view("ustar  \0", 8)
                  : std::string_view("ustar\0"
                                     "00",
                                     8));
    Put(block, 345, 155, entry.prefix);
    return WithTarChecksum(block, entry.wrongChecksum ? 1 : 0) + Padded(entry.content);
}

std::string TarFile(const std::string& name, const std::string& content) {
    TarBlockEntry entry;
    entry.name = name;
    entry.content = content;
    return TarBlocks(entry);
}

std::string TarFolder(const std::string& name) {
    TarBlockEntry entry;
    entry.name = name;
    entry.type = '5';
    entry.mode = 0755;
    return TarBlocks(entry);
}

std::string TarLink(const std::string& name, char type, const std::string& target) {
    TarBlockEntry entry;
    entry.name = name;
    entry.type = type;
    entry.link = target;
    return TarBlocks(entry);
}

std::string TarPax(const std::string& records) {
    TarBlockEntry entry;
    entry.name = "PaxHeader";
    entry.type = 'x';
    entry.content = records;
    return TarBlocks(entry);
}

std::string PaxRecord(std::string_view key, std::string_view value, int error) {
    const std::size_t rest = key.size() + value.size() + 3; // blank, "=", line feed
    std::size_t length = rest;
    while (length != rest + std::to_string(length).size())
        length = rest + std::to_string(length).size();
    return std::to_string(static_cast<long long>(length) + error) + " " + std::string(key) + "=" +
           std::string(value) + "\n";
}

std::string TarGnuLongName(const std::string& name) {
    TarBlockEntry entry;
    entry.name = "././@LongLink";
    entry.type = 'L';
    entry.gnu = true;
    entry.content = name + '\0';
    return TarBlocks(entry);
}

std::string TarEnd() {
    return std::string(2 * kBlock, '\0');
}
