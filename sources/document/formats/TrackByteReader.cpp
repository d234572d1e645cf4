#include "document/formats/TrackByteReader.h"

#include <filesystem>
#include <stdexcept>

TrackByteReader::TrackByteReader(const std::string& path) {
    std::error_code failure;
    const std::uintmax_t found = std::filesystem::file_size(path, failure);
    if (failure)
        return;
    file.open(path, std::ios::binary);
    if (file.is_open())
        size = static_cast<std::int64_t>(found);
}

void TrackByteReader::Read(void* bytes, std::size_t count) {
    const auto wanted = static_cast<std::int64_t>(count);
    RequireRemaining(wanted);
    if (!file.read(static_cast<char*>(bytes), wanted))
        throw std::runtime_error("File could not be read at byte " + std::to_string(place));
    place += wanted;
}

void TrackByteReader::Skip(std::int64_t count) {
    RequireRemaining(count);
    if (!file.seekg(count, std::ios::cur))
        throw std::runtime_error("File could not be read at byte " + std::to_string(place));
    place += count;
}

void TrackByteReader::RequireRemaining(std::int64_t count) const {
    if (count < 0 || count > Remaining())
        throw std::runtime_error("File cut short at byte " + std::to_string(size));
}
