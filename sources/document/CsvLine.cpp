#include "CsvLine.h"

#include <boost/tokenizer.hpp>

#include <algorithm>

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

} // namespace

void CsvLine::Split(std::string_view line) {
    hasFields = !line.empty();
    text = line;
    if (!NeedsTokenizer(line))
        return;
    unquoted = Unquoted(line);
    text = unquoted;
}

std::size_t CsvLine::FieldCount() const {
    if (!hasFields)
        return 0;
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1;
}
