#include "document/formats/TrackBytes.h"

#include <algorithm>
#include <stdexcept>

namespace {

/// Numbers are read one by one; the file is read in blocks of this size.
constexpr std::size_t kBufferSize = 4096;

} // namespace

TrackByteReader::TrackByteReader(const std::string& path) : file(path.c_str()) {
    FileFacts facts;
    if (file.IsOpen() && file.Ask(&facts))
        size = facts.size;
}

void TrackByteReader::Read(void* bytes, std::size_t count) {
    RequireRemaining(static_cast<std::int64_t>(count));
    auto* const to = static_cast<char*>(bytes);
    const std::size_t buffered = TakeBuffered(to, count);
    const std::size_t rest = count - buffered;
    if (rest >= kBufferSize) {
        Fetch(to + buffered, rest, rest);
    } else if (rest > 0) {
        buffer.resize(kBufferSize);
        taken = 0;
        buffer.resize(Fetch(buffer.data(), kBufferSize, rest));
        TakeBuffered(to + buffered, rest);
    }
    place += static_cast<std::int64_t>(count);
}

void TrackByteReader::Skip(std::int64_t count) {
    RequireRemaining(count);
    const std::int64_t buffered =
        std::min(count, static_cast<std::int64_t>(buffer.size()) - static_cast<std::int64_t>(taken));
    taken += static_cast<std::size_t>(buffered);
    if (file.Skip(count - buffered) != count - buffered)
        Fail();
    place += count;
}

std::size_t TrackByteReader::TakeBuffered(char* to, std::size_t count) {
    const std::size_t buffered = std::min(count, buffer.size() - taken);
    std::copy_n(buffer.data() + taken, buffered, to);
    taken += buffered;
    return buffered;
}

/// Reads at least `least` bytes of the file. @return how many were read
std::size_t TrackByteReader::Fetch(char* to, std::size_t capacity, std::size_t least) {
    std::size_t count = 0;
    if (!file.Read(to, capacity, &count) || count < least)
        Fail();
    return count;
}

void TrackByteReader::Fail() const {
    throw std::runtime_error("File could not be read at byte " + std::to_string(place));
}

void TrackByteReader::RequireRemaining(std::int64_t count) const {
    if (count < 0 || count > Remaining())
        throw std::runtime_error("File cut short at byte " + std::to_string(size));
}
