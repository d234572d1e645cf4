#include "document/formats/CsvScan.h"

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

void CsvScan::MoveBehindHeader() {
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
