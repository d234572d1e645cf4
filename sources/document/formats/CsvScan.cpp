#include "document/formats/CsvScan.h"

#include "log/Log.h"

#include <boost/tokenizer.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;

void RequireAllowed(std::size_t lineLength) {
    if (lineLength > TextLines::kMaxLineLength)
        throw std::length_error("A line is longer than " + std::to_string(TextLines::kMaxLineLength) +
                                " bytes");
}

using Separator = boost::escaped_list_separator<char>;
using Tokenizer = boost::tokenizer<Separator, std::string_view::const_iterator>;

std::string Unquoted(std::string_view line) {
    std::string text;
    text.reserve(line.size());
    bool isFirst = true;
    for (const std::string& field : Tokenizer(line.begin(), line.end(), Separator())) {
        if (!isFirst)
            text += ',';
        isFirst = false;
        const std::size_t start = text.size();
        text += field;
        std::replace(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), ',', ';');
    }
    return text;
}

bool NeedsTokenizer(std::string_view line) {
    return line.find('"') != std::string_view::npos || line.find('\\') != std::string_view::npos;
}

/// Counts in pieces of a fixed size, which the compiler vectorises.
std::size_t CommaCount(std::string_view text) {
    constexpr std::size_t kPiece = 128;
    std::size_t count = 0;
    for (; text.size() >= kPiece; text.remove_prefix(kPiece)) {
        std::uint8_t inPiece = 0;
        for (std::size_t i = 0; i < kPiece; ++i)
            inPiece = static_cast<std::uint8_t>(inPiece + (text[i] == ',' ? 1 : 0));
        count += inPiece;
    }
    return count + static_cast<std::size_t>(std::count(text.begin(), text.end(), ','));
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

/// Moves the unfinished line to the front of the block and reads more bytes after it. @return false at the
/// file's end
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

void CsvLine::Split(std::string_view line, std::uint64_t lineNumber) {
    number = lineNumber;
    hasFields = !line.empty();
    text = line;
    if (!NeedsTokenizer(line))
        return;
    unquoted = Unquoted(line);
    text = unquoted;
}

void CsvLine::LogPlace() const {
    constexpr std::size_t kMaxShown = 60;
    if (number == 0)
        return;
    std::string shown(text.substr(0, kMaxShown));
    std::replace_if(
        shown.begin(), shown.end(), [](unsigned char letter) { return letter < ' ' || letter > '~'; }, '?');
    LOG_LINE(INFO) << "Line " << number << ": \"" << shown << (text.size() > kMaxShown ? "..." : "") << '"';
}

std::size_t CsvLine::FieldCount() const {
    if (!hasFields)
        return 0;
    return CommaCount(text) + 1;
}

bool CsvFields::NextNumber(double& value) {
    PackedDecimal packed;
    if (NextPacked(packed)) {
        value = packed.Value();
        return true;
    }
    const ShortDecimal decimal = ReadShortDecimal(at, end);
    if (decimal.exact && (decimal.end == end || *decimal.end == ',')) {
        value = decimal.value;
        MoveTo(decimal.end);
        return true;
    }
    const std::string_view field = Next();
    if (field.empty())
        return false;
    value = ToDouble(field);
    return true;
}

bool CsvScan::Next() {
    std::string_view text;
    do {
        if (!lines.Next(text))
            return false;
    } while (text.empty());
    Split(text);
    return true;
}

bool CsvScan::Find(std::string_view keyword) {
    while (Next()) {
        if (line.StartsWith(keyword))
            return true;
    }
    return false;
}

void CsvScan::Drop() {
    std::string_view unread;
    static_cast<void>(lines.Next(unread));
}

void CsvScan::MoveAfterHeader() {
    Drop();
    std::string_view text;
    Split(lines.Next(text) ? text : std::string_view());
}

void CsvScan::Split(std::string_view text) {
    try {
        line.Split(text, lines.LineNumber());
    } catch (...) {
        line.LogPlace();
        throw;
    }
}
