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
    : file(std::move(path)), rowsPerStart(std::max(1, kCellsPerStart / columns)) {
    CsvScan scan(file);
    if (!scan.IsOpen())
        throw std::runtime_error("File could not be opened");
    TakeLine(scan);
}

bool TextHeights::Prepare(std::chrono::microseconds time) {
    if (isComplete)
        return false;
    CsvScan scan(file);
    scan.MoveTo(nextLine);
    const auto end = std::chrono::steady_clock::now() + time;
    do
        TakeLine(scan);
    while (!isComplete && std::chrono::steady_clock::now() < end);
    return !isComplete;
}

/// The first map of the file is the one that is shown, from the line after its header to its "End".
void TextHeights::TakeLine(CsvScan& scan) {
    const std::uint64_t start = scan.Position();
    isComplete = inMap ? !scan.NextInSection() : !scan.Next();
    if (inMap && !isComplete && rowCount++ % rowsPerStart == 0)
        starts.push_back(start);
    inMap = inMap || (!isComplete && scan.Line().StartsWith("YX"));
    nextLine = scan.Position();
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
