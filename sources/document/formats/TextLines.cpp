#include "document/formats/TextLines.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;

void RequireAllowed(std::size_t lineLength) {
    if (lineLength > TextLines::kLongestLine)
        throw std::length_error("A line is longer than " + std::to_string(TextLines::kLongestLine) +
                                " bytes");
}

} // namespace

TextLines::TextLines(const std::string& path) : file(path.c_str()) {
    FileFacts facts;
    if (!file.IsOpen() || !file.Ask(&facts))
        return;
    fileSize = static_cast<std::uint64_t>(facts.size);
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
    if (!file.MoveTo(static_cast<std::int64_t>(byte)))
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
    std::size_t count = 0;
    if (!file.Read(block.data() + end, block.size() - end, &count))
        throw std::runtime_error("The file cannot be read");
    end += count;
    return count > 0;
}
