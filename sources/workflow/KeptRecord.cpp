#include "workflow/KeptRecord.h"

#include <utility>

namespace {

constexpr std::size_t kMagicSize = 8;
constexpr std::size_t kHeadSize = kMagicSize + sizeof(std::uint32_t);
constexpr std::size_t kLengthSize = sizeof(std::uint64_t);
constexpr std::size_t kTailSize = kLengthSize + sizeof(std::uint32_t);
constexpr std::size_t kBufferSize = std::size_t{64} * 1024;

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

KeptRecordWriter::KeptRecordWriter(Sink sink, std::string_view magic, std::uint32_t version)
    : sink(std::move(sink)) {
    buffer.reserve(kBufferSize);
    AddBytes(magic.data(), kMagicSize);
    Add(version);
}

void KeptRecordWriter::Finish() {
    Add(std::uint64_t{length});
    Add(std::uint32_t{checksum.Value()});
    Flush();
}

void KeptRecordWriter::AddCounted(const void* data, std::size_t count, std::size_t size) {
    Add(std::uint64_t{count});
    AddBytes(data, count * size);
}

void KeptRecordWriter::AddBytes(const void* data, std::size_t size) {
    checksum.Take(data, size);
    length += size;
    if (buffer.size() + size > kBufferSize)
        Flush();
    const auto* const bytes = static_cast<const char*>(data);
    if (size > kBufferSize)
        sink(bytes, size);
    else
        buffer.insert(buffer.end(), bytes, bytes + size);
}

void KeptRecordWriter::Flush() {
    sink(buffer.data(), buffer.size());
    buffer.clear();
}

KeptRecordReader::KeptRecordReader(std::string file, std::string_view magic, std::uint32_t version)
    : bytes(std::move(file)) {
    if (bytes.substr(0, kMagicSize) != magic)
        throw std::runtime_error("it is no such file");
    if (bytes.size() < kHeadSize + kTailSize)
        throw std::runtime_error("it is cut short");
    // Checked first: another version may have another layout.
    if (const auto found = NumberAt<std::uint32_t>(bytes, kMagicSize); found != version)
        throw std::runtime_error("its version is " + std::to_string(found));
    at = kHeadSize;
    end = bytes.size() - kTailSize;
    if (NumberAt<std::uint64_t>(bytes, end) != end)
        throw std::runtime_error("its length is another than it says");
    const std::size_t checked = end + kLengthSize;
    if (NumberAt<std::uint32_t>(bytes, checked) != ChecksumOf(bytes.data(), checked))
        throw std::runtime_error("its checksum is wrong");
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
