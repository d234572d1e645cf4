#include "document/formats/CsvLine.h"

#include "log/Log.h"

#include <boost/tokenizer.hpp>

#include <algorithm>
#include <cstdint>

namespace {

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

/// Counts in pieces of a fixed size, which the compiler turns into wide instructions.
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
