#include "document/formats/TextLines.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;

void RequireAllowed(std::size_t lineLength) {
    if (lineLength > TextLines::kLongestLine)
        throw std::length_error("A line is longer than " + std::to_string(TextLines::kLongestLine) +
                                " bytes");
}

} // namespace

TextLines::TextLines(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error)
        return;
    fileSize = size;
    file.rdbuf()->pubsetbuf(nullptr, 0);
    file.open(path, std::ios::binary);
    if (file.is_open())
        block.resize(kBlock);
}

bool TextLines::Next(std::string_view& line) {
    do {
        const char* const rest = block.data() + begin;
        const std::size_t size = end - begin;
        if (const void* const found =
                searched == size ? nullptr : std::memchr(rest + searched, '\n', size - searched)) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(found) - rest);
            RequireAllowed(length);
            line = TakeLine(length, begin + length + 1);
            return true;
        }
        searched = size;
    } while (Refill());
    if (begin == end)
        return false;
    line = TakeLine(end - begin, end);
    return true;
}

std::string_view TextLines::TakeLine(std::size_t length, std::size_t lineEnd) {
    std::string_view line(block.data() + begin, length);
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    ++lineNumber;
    position += lineEnd - begin;
    begin = lineEnd;
    searched = 0;
    return line;
}

void TextLines::MoveTo(std::uint64_t byte) {
    file.clear();
    if (!file.seekg(static_cast<std::streamoff>(byte)))
        throw std::runtime_error("The file cannot be read at byte " + std::to_string(byte));
    position = byte;
    begin = end = searched = 0;
}

/// Moves the unfinished line to the front of the block and reads on behind it. @return false at the file's
/// end
bool TextLines::Refill() {
    const std::size_t size = end - begin;
    RequireAllowed(size);
    std::memmove(block.data(), block.data() + begin, size);
    begin = 0;
    end = size;
    if (end == block.size())
        block.resize(block.size() * 2);
    file.read(block.data() + end, static_cast<std::streamsize>(block.size() - end));
    if (file.bad())
        throw std::runtime_error("The file cannot be read");
    end += static_cast<std::size_t>(file.gcount());
    return file.gcount() > 0;
}
