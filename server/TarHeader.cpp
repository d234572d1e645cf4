#include "server/TarHeader.h"

#include <array>
#include <charconv>
#include <numeric>

namespace {

struct Field {
    std::size_t offset;
    std::size_t size;
};

constexpr Field kName{0, 100};
constexpr Field kMode{100, 8};
constexpr Field kOwner{108, 8};
constexpr Field kGroup{116, 8};
constexpr Field kSize{124, 12};
constexpr Field kModified{136, 12};
constexpr Field kChecksum{148, 8};
constexpr Field kType{156, 1};
constexpr Field kMagic{257, 8};
constexpr std::uint64_t kLargestOctal = 077777777777;

using Block = std::array<char, kTarBlock>;

void Put(Block& block, const Field& field, const std::string& text) {
    text.copy(block.data() + field.offset, field.size);
}

/// Octal digits over the field but its last byte, which stays zero.
void PutOctal(Block& block, const Field& field, std::uint64_t value) {
    constexpr int kOctal = 8;
    std::string digits(field.size - 1, '0');
    for (std::size_t i = digits.size(); i > 0; --i, value /= kOctal)
        digits[i - 1] = static_cast<char>('0' + value % kOctal);
    Put(block, field, digits);
}

std::string UstarBlock(const std::string& name, char type, unsigned mode, std::uint64_t size,
                       std::uint64_t modified) {
    Block block{};
    Put(block, kName, name);
    PutOctal(block, kMode, mode);
    PutOctal(block, kOwner, 0);
    PutOctal(block, kGroup, 0);
    PutOctal(block, kSize, size);
    PutOctal(block, kModified, modified);
    Put(block, kType, std::string(1, type));
    Put(block, kMagic, std::string("ustar\00000", 8));
    Put(block, kChecksum, std::string(kChecksum.size, ' '));
    const auto sum = std::accumulate(block.begin(), block.end(), 0U, [](unsigned total, char c) {
        return total + static_cast<unsigned char>(c);
    });
    PutOctal(block, {kChecksum.offset, kChecksum.size - 1}, sum);
    return {block.data(), block.size()};
}

/// "length key=value\n", where the length counts its own digits too.
std::string PaxRecord(const std::string& key, const std::string& value) {
    const std::size_t rest = key.size() + value.size() + 3;
    std::size_t length = rest + 1;
    while (rest + std::to_string(length).size() != length)
        length = rest + std::to_string(length).size();
    return std::to_string(length) + " " + key + "=" + value + "\n";
}

std::string PaxHeader(const std::string& records) {
    return UstarBlock("PaxHeader", 'x', 0644, records.size(), 0) + records +
           std::string(static_cast<std::size_t>(TarPadding(records.size())), '\0');
}

} // namespace

std::string TarHeader(const std::string& name, TarKind kind, std::uint64_t size, std::uint64_t modified) {
    const bool folder = kind == TarKind::Folder;
    const std::string stored = folder ? name + "/" : name; // the slash is what other tools put there
    std::string records;
    if (stored.size() > kName.size)
        records += PaxRecord("path", stored);
    if (size > kLargestOctal)
        records += PaxRecord("size", std::to_string(size));
    const std::string extended = records.empty() ? std::string() : PaxHeader(records);
    return extended + UstarBlock(stored, folder ? '5' : '0', folder ? 0755 : 0644,
                                 size > kLargestOctal ? 0 : size, modified > kLargestOctal ? 0 : modified);
}
