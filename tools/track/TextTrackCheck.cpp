#include "tools/track/TextTrackCheck.h"

#include "document/formats/NumberText.h"
#include "tools/commandline/DecimalText.h"
#include "tools/track/SavePaths.h"

#include <cmath>
#include <exception>

namespace {

/// Text tracks store numbers with 6 significant digits.
constexpr double kPlaceTolerance = 1e-5;

std::string Quoted(std::string_view field) {
    constexpr std::size_t kMaxShown = 40;
    return "'" + std::string(field.substr(0, kMaxShown)) + (field.size() > kMaxShown ? "...'" : "'");
}

} // namespace

void TextTrackCheck::Run() {
    try {
        CheckSections();
    } catch (const std::exception& failure) { // a line is too long, or the disk cannot be read
        ++number;
        Error(failure.what());
        return;
    }
    CheckMissingSections();
}

void TextTrackCheck::CheckSections() {
    while (NextLine()) {
        if (!isUsable)
            continue;
        if (line.StartsWith("Info"))
            CheckInfo();
        else if (line.StartsWith("YX"))
            CheckMap();
        else if (line.StartsWith("Anchor"))
            CheckAnchor();
        else if (line.StartsWith("Segment") && !hasPoints)
            CheckPoints();
    }
}

void TextTrackCheck::CheckInfo() {
    hasInfo = true;
    if (!MoveAfterHeader())
        return Error("the line of the information is missing");
    if (!isUsable)
        return;
    if (const std::size_t count = line.FieldCount(); count != 8)
        return Error(std::to_string(count) + " fields in the information, which has 8");
    CsvFields fields(line);
    info.xResolution = NumberOf(fields.Next(), "the X resolution");
    info.yResolution = NumberOf(fields.Next(), "the Y resolution");
    info.zResolution = NumberOf(fields.Next(), "the Z resolution");
    info.xOffset = NumberOf(fields.Next(), "the X offset");
    info.yOffset = NumberOf(fields.Next(), "the Y offset");
    info.zOffset = NumberOf(fields.Next(), "the Z offset");
    const std::int32_t width = IntegerOf(fields.Next(), "the width");
    const std::int32_t height = IntegerOf(fields.Next(), "the height");
    if (hasMap && (width != info.width || height != info.height))
        Error("other dimensions than those that the height map was read with");
    info.width = width;
    info.height = height;
    for (const double resolution : {info.xResolution, info.yResolution, info.zResolution})
        if (!(resolution > 0.0) || !std::isfinite(resolution))
            Warning("a resolution of " + RoundedDecimal(resolution));
}

void TextTrackCheck::CheckAnchor() {
    hasAnchor = true;
    if (!MoveAfterHeader())
        return Error("the line of the anchor is missing");
    if (!isUsable)
        return;
    if (const std::size_t count = line.FieldCount(); count < 3)
        return Error(std::to_string(count) + " fields in the anchor, which has 3");
    CsvFields fields(line);
    for (const char* const name : {"the anchor's X", "the anchor's Y", "the anchor's angle"})
        NumberOf(fields.Next(), name);
}

void TextTrackCheck::CheckMap() {
    hasMap = true;
    if (!hasInfo) {
        Error("the height map comes before any information");
    } else {
        CheckSize();
        if (const auto count = static_cast<std::int64_t>(line.FieldCount());
            count != std::int64_t{info.width} + 1)
            Error(std::to_string(count) + " fields in the height map's header, which has " +
                  std::to_string(std::int64_t{info.width} + 1));
        CsvFields fields(line);
        for (fields.Next(); fields.HasNext();)
            NumberOf(fields.Next(), "a column's position");
    }
    HeightRange range(kInitialMinHeight, kInitialMaxHeight);
    std::int64_t row = 0;
    for (; NextInSection(); ++row)
        if (hasInfo && isUsable)
            CheckRow(row, range);
    if (isAtEnd)
        Warning("the height map is not closed by an End line");
    if (!hasInfo)
        return;
    if (row < info.height)
        Error(std::to_string(row) + " rows in a height map of " + std::to_string(info.height));
    if (!(range.Lowest() < range.Highest()))
        Error("the height map has no two different heights");
}

void TextTrackCheck::CheckSize() {
    // Like the reader: rows may be short, so a small map is accepted.
    constexpr std::uint64_t kSmallMap = std::uint64_t{1} << 20;
    if (info.width < 1 || info.height < 1)
        return Error("a height map of " + std::to_string(info.width) + " x " + std::to_string(info.height) +
                     " cells");
    const auto cells = static_cast<std::uint64_t>(info.width) * static_cast<std::uint64_t>(info.height);
    if (cells > std::max(lines.FileSize(), kSmallMap))
        Error("the file is too small for a height map of " + std::to_string(info.width) + " x " +
              std::to_string(info.height) + " cells");
}

void TextTrackCheck::CheckRow(std::int64_t row, HeightRange& range) {
    if (row >= info.height)
        return Error("a row too many in a height map of " + std::to_string(info.height));
    const auto cells = static_cast<std::int64_t>(line.FieldCount()) - 1;
    if (cells > info.width)
        Error(std::to_string(cells) + " cells in a row of " + std::to_string(info.width));
    else if (cells < info.width)
        Warning(std::to_string(cells) + " cells in a row of " + std::to_string(info.width) +
                "; the others have no measurement");
    CsvFields fields(line);
    NumberOf(fields.Next(), "the row's position");
    CheckCells(fields, range);
}

void TextTrackCheck::CheckCells(CsvFields& fields, HeightRange& range) {
    for (std::int64_t column = 0; fields.HasNext(); ++column) {
        const std::string_view field = fields.Next();
        if (field.empty())
            continue;
        const double height = ToDouble(field);
        range.Add(height);
        if (!ParseNumber(field))
            Warning("the height in column " + std::to_string(column) + " is " + Quoted(field) +
                    " and read as " + RoundedDecimal(height));
        else if (!std::isfinite(height))
            Warning("the height in column " + std::to_string(column) +
                    " is not finite and counts as no measurement");
    }
}

void TextTrackCheck::CheckPoints() {
    hasPoints = true;
    PointCheck points(WorldOf(info), kPlaceTolerance);
    std::string_view header;
    bool fails = false;
    if (TakeLine(header))
        while (NextInSection())
            if (isUsable)
                CheckPoint(points, fails);
    if (isAtEnd)
        Warning("the section with the paths is not closed by an End line");
}

/// @param fails whether the readers have failed at an earlier point
void TextTrackCheck::CheckPoint(PointCheck& points, bool& fails) {
    constexpr std::size_t kFields = 10;
    const std::size_t count = line.FieldCount();
    if (count < kFields) {
        fails = true;
        return Error(std::to_string(count) + " fields for a point, which has 10");
    }
    if (count > kFields)
        Warning(std::to_string(count) + " fields for a point, which has 10; the others are not read");
    CsvFields fields(line);
    PointRecord point;
    point.track = IntegerOf(fields.Next(), "Track");
    point.segment = IntegerOf(fields.Next(), "Segment");
    point.place.rx() = NumberOf(fields.Next(), "X");
    point.place.ry() = NumberOf(fields.Next(), "Y");
    point.relative.rx() = NumberOf(fields.Next(), "RelativeX");
    point.relative.ry() = NumberOf(fields.Next(), "RelativeY");
    point.method = IntegerOf(fields.Next(), "Method");
    for (const char* const name : {"Length", "Width", "Space"})
        IntegerOf(fields.Next(), name);
    if (!points.Take(point, [this](const std::string& text) { Warning(text); }) && !fails) {
        fails = true;
        Error("the first point is one of Track " + std::to_string(point.track) + ", and there is no Track 0");
    }
}

void TextTrackCheck::CheckMissingSections() {
    ++number; // the line after the last one
    if (!hasMap)
        Error("no height map");
    if (!hasPoints)
        Error("no section with paths");
    if (!hasAnchor)
        Warning("no anchor: it counts as 0, 0, 0");
}

double TextTrackCheck::NumberOf(std::string_view field, const std::string& name) {
    const double value = ToDouble(field);
    if (!ParseNumber(field))
        Warning(name + " is " + Quoted(field) + " and read as " + RoundedDecimal(value));
    return value;
}

std::int32_t TextTrackCheck::IntegerOf(std::string_view field, const std::string& name) {
    const std::int32_t value = ToInt32(field);
    if (!ParseInteger(field))
        Warning(name + " is " + Quoted(field) + " and read as " + std::to_string(value));
    return value;
}

/// Moves to the next line that is not empty.
bool TextTrackCheck::NextLine() {
    std::string_view text;
    do {
        if (!TakeLine(text))
            return false;
    } while (text.empty());
    Split(text);
    return true;
}

bool TextTrackCheck::NextInSection() {
    return NextLine() && !(isUsable && line.StartsWith("End"));
}

/// Skips the header line. @return whether a line follows, with fields or malformed
bool TextTrackCheck::MoveAfterHeader() {
    std::string_view text;
    if (!TakeLine(text) || !TakeLine(text) || text.empty())
        return false;
    Split(text);
    return true;
}

bool TextTrackCheck::TakeLine(std::string_view& text) {
    if (!lines.Next(text)) {
        isAtEnd = true;
        return false;
    }
    ++number;
    return true;
}

void TextTrackCheck::Split(std::string_view text) {
    isUsable = false;
    try {
        line.Split(text);
        isUsable = line.HasFields();
    } catch (const std::exception& failure) { // an invalid escape sequence
        Error(failure.what());
    }
}

void TextTrackCheck::Report(TrackProblem::Severity severity, const std::string& text) {
    sink({severity, number, std::nullopt, text});
}
