#include "document/formats/CsvScan.h"

bool CsvScan::Next() {
    std::string_view text;
    do {
        if (!lines.Next(text))
            return false;
    } while (text.empty());
    line.Split(text);
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
    line.Split(lines.Next(text) ? text : std::string_view());
}
