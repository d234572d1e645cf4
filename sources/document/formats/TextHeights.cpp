#include "document/formats/TextHeights.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

constexpr int kCellsPerStart = 4096;

CellHeight HeightInRow(const CsvLine& line, int column) {
    CsvFields fields(line);
    for (int passed = 0; passed <= column && fields.HasNext(); ++passed) // the row's position comes first
        fields.Next();
    double height = 0.0;
    const bool measured = fields.HasNext() && fields.NextNumber(height) && std::isfinite(height);
    return measured ? CellHeight{CellHeight::Kind::Measured, height}
                    : CellHeight{CellHeight::Kind::NotMeasured, 0.0};
}

} // namespace

TextHeights::TextHeights(std::string path, int columns)
    : file(std::move(path)),
      rowsPerStart(std::max(1, kCellsPerStart / columns)),
      scan(std::make_unique<CsvScan>(file)) {
    if (!scan->IsOpen())
        throw std::runtime_error("File could not be opened");
    if (!TakeLine())
        scan.reset();
}

bool TextHeights::Prepare(std::chrono::microseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (scan != nullptr && std::chrono::steady_clock::now() < end)
        if (!TakeLine())
            scan.reset();
    return scan != nullptr;
}

/// The first map of the file is the one that is shown, from the line after its header to its "End".
bool TextHeights::TakeLine() {
    const std::uint64_t start = scan->Position();
    if (!inMap) {
        const bool more = scan->Next();
        inMap = more && scan->Line().StartsWith("YX");
        return more;
    }
    if (!scan->NextInSection())
        return false;
    if (rowCount++ % rowsPerStart == 0)
        starts.push_back(start);
    return true;
}

CellHeight TextHeights::At(int column, int row) const {
    if (row >= rowCount)
        return {};
    CsvScan from(file);
    from.MoveTo(starts.at(static_cast<std::size_t>(row / rowsPerStart)));
    for (int passed = 0; passed <= row % rowsPerStart; ++passed)
        if (!from.Next())
            return {};
    return HeightInRow(from.Line(), column);
}
