#include "workflow/KeptRecord.h"

#include "basalt/Crc32c.h"

#include <utility>

namespace {

constexpr std::size_t kMagicSize = 8;
constexpr std::size_t kVersionAt = kMagicSize;
constexpr std::size_t kLengthAt = kVersionAt + sizeof(std::uint32_t);
constexpr std::size_t kHeadSize = kLengthAt + sizeof(std::uint64_t);
constexpr std::size_t kChecksumSize = sizeof(std::uint32_t);

static_assert(sizeof(QPointF) == 2 * sizeof(double), "points are stored as they are in memory");

std::uint32_t ChecksumOf(const char* data, std::size_t size) {
    Crc32c checksum;
    checksum.Take(data, size);
    return checksum.Value();
}

template<typename Number>
Number NumberAt(const std::string& bytes, std::size_t at) {
    Number number{};
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

} // namespace

KeptRecordWriter::KeptRecordWriter(std::string_view magic, std::uint32_t version) {
    AddBytes(magic.data(), kMagicSize);
    Add(version);
    Add(std::uint64_t{0}); // the length, once it is known
}

const std::string& KeptRecordWriter::Finish() {
    const std::uint64_t length = bytes.size() - kHeadSize;
    std::memcpy(bytes.data() + kLengthAt, &length, sizeof length);
    Add(ChecksumOf(bytes.data(), bytes.size()));
    return bytes;
}

void KeptRecordWriter::AddCounted(const void* data, std::size_t count, std::size_t size) {
    Add(std::uint64_t{count});
    AddBytes(data, count * size);
}

void KeptRecordWriter::AddBytes(const void* data, std::size_t size) {
    bytes.append(static_cast<const char*>(data), size);
}

KeptRecordReader::KeptRecordReader(std::string file, std::string_view magic, std::uint32_t version)
    : bytes(std::move(file)) {
    if (bytes.substr(0, kMagicSize) != magic)
        throw std::runtime_error("it is no such file");
    if (bytes.size() < kHeadSize + kChecksumSize)
        throw std::runtime_error("it is cut short");
    // Before the checksum: another version may have another one.
    if (const auto found = NumberAt<std::uint32_t>(bytes, kVersionAt); found != version)
        throw std::runtime_error("its version is " + std::to_string(found));
    end = bytes.size() - kChecksumSize;
    if (NumberAt<std::uint64_t>(bytes, kLengthAt) != end - kHeadSize)
        throw std::runtime_error("its length is another than it says");
    if (NumberAt<std::uint32_t>(bytes, end) != ChecksumOf(bytes.data(), end))
        throw std::runtime_error("its checksum is wrong");
    at = kHeadSize;
}

std::string KeptRecordReader::ReadText() {
    const std::size_t size = ReadCount(1);
    return {Take(size), size};
}

void KeptRecordReader::ExpectEnd() const {
    if (at != end)
        throw std::runtime_error("it holds more than it should");
}

const char* KeptRecordReader::Take(std::size_t size) {
    if (size > end - at)
        throw std::runtime_error("it holds less than it says");
    const char* const taken = bytes.data() + at;
    at += size;
    return taken;
}

std::size_t KeptRecordReader::ReadCount(std::size_t size) {
    const auto count = Read<std::uint64_t>();
    if (count > (end - at) / size)
        throw std::runtime_error("it holds less than it says");
    return static_cast<std::size_t>(count);
}
