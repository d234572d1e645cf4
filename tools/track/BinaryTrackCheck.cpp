#include "tools/track/BinaryTrackCheck.h"

#include "document/formats/BinaryTrackLayout.h"
#include "document/formats/HeightRange.h"
#include "tools/commandline/DecimalText.h"
#include "tools/track/SavePaths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <span>

using namespace BinaryTrackLayout;

namespace {

/// Binary tracks store the computed numbers exactly.
constexpr double kPlaceTolerance = 1e-9;

/// Thrown after an error that makes the rest of the file unreadable.
class Unreadable final : public std::exception {};

std::string Sides(const TrackInfo& info) {
    return std::to_string(info.width) + " x " + std::to_string(info.height);
}

} // namespace

BinaryTrackCheck::BinaryTrackCheck(const std::string& file, const ProblemSink& sink)
    : file(file), bytes(file), size(bytes.Remaining()), sink(sink) {
}

void BinaryTrackCheck::Run() {
    try {
        CheckMagic();
        CheckVersion();
        CheckHeader();
        CheckMap();
        CheckBlocks();
    } catch (const Unreadable&) { // already reported
    }
}

void BinaryTrackCheck::CheckMagic() {
    std::array<char, kMagicSize> magic{};
    Require(kMagicSize, "its first 8 bytes");
    bytes.Read(magic.data(), magic.size());
    const std::string_view found(magic.data(), magic.size());
    if (found.find(kMagicWord) == std::string_view::npos)
        Fail("the first 8 bytes are not those of a track");
    if (found != kMagic)
        Warning("the first 8 bytes are unusual for a track");
}

void BinaryTrackCheck::CheckVersion() {
    Require(sizeof kVersion, "the version");
    if (const auto version = Next<std::int32_t>(); version != kVersion)
        Fail("version " + std::to_string(version) + ", whose layout is unknown");
}

void BinaryTrackCheck::CheckHeader() {
    Require(6 * sizeof(double) + 2 * sizeof(std::int32_t), "the information");
    for (double* const resolution : {&info.xResolution, &info.yResolution, &info.zResolution}) {
        *resolution = Next<double>();
        if (!(*resolution > 0.0) || !std::isfinite(*resolution))
            Warning("a resolution of " + RoundedDecimal(*resolution));
    }
    for (double* const offset : {&info.xOffset, &info.yOffset, &info.zOffset}) {
        *offset = Next<double>();
        if (!std::isfinite(*offset))
            Warning("an offset of " + RoundedDecimal(*offset));
    }
    for (std::int32_t* const side : {&info.width, &info.height}) {
        *side = Next<std::int32_t>();
        if (*side < 0)
            Error("a height map with " + std::to_string(*side) +
                  (side == &info.width ? " columns" : " rows"));
    }
    if (info.width < 0 || info.height < 0)
        throw Unreadable();
}

void BinaryTrackCheck::CheckMap() {
    place = size - bytes.Remaining();
    // Cannot overflow: twice the product of two int32 fits into int64.
    const std::int64_t cells = std::int64_t{info.width} * info.height;
    const auto mapSize = cells * static_cast<std::int64_t>(sizeof(std::int16_t));
    if (mapSize > bytes.Remaining())
        Fail("a height map of " + Sides(info) + " cells takes " + std::to_string(mapSize) +
             " bytes, and the file has " + std::to_string(bytes.Remaining()) + " more");
    CheckHeights(cells);
}

void BinaryTrackCheck::CheckHeights(std::int64_t cells) {
    constexpr std::int64_t kBlockCells = std::int64_t{64} * 1024;
    SampleRange range({info.zResolution, info.zOffset});
    std::vector<std::int16_t> block(static_cast<std::size_t>(std::min(cells, kBlockCells)));
    for (std::int64_t left = cells; left > 0; left -= kBlockCells) {
        const auto samples = std::span(block).first(static_cast<std::size_t>(std::min(left, kBlockCells)));
        bytes.Read(samples.data(), samples.size_bytes());
        range.Add(samples);
    }
    if (!(range.Lowest() < range.Highest()))
        Error("the height map has no two different heights");
}

void BinaryTrackCheck::CheckBlocks() {
    if (NextIs(kAnchorTag))
        CheckAnchor();
    else
        Warning("no anchor: it counts as 0, 0, 0");
    if (NextIs(kRulerTag))
        CheckRulers();
    else
        Warning("no block with rulers");
    if (NextIs(kSegmentTag))
        CheckPoints();
    else
        Warning("no block with paths: the track has none");
}

void BinaryTrackCheck::CheckAnchor() {
    Require(kAnchorSize, "the anchor");
    bytes.Skip(kAnchorSize);
}

/// Skips the records; they are checked later, when the points are known.
void BinaryTrackCheck::CheckRulers() {
    Require(sizeof rulers, "the number of rulers");
    rulers = Next<std::int32_t>();
    if (rulers < 0 || rulers > bytes.Remaining() / kRecordSize)
        Fail(std::to_string(rulers) + " rulers, which are not in the file");
    rulersAt = size - bytes.Remaining();
    bytes.Skip(rulers * kRecordSize);
}

void BinaryTrackCheck::CheckPoints() {
    Require(sizeof(std::int32_t), "the number of points");
    const auto count = Next<std::int32_t>();
    const bool isComplete = count >= 0 && count <= bytes.Remaining() / kRecordSize;
    if (!isComplete)
        Error(std::to_string(count) + " points, which are not in the file");
    PointCheck points(WorldOf(info), kPlaceTolerance);
    for (std::int64_t left = count; left > 0 && bytes.Remaining() >= kRecordSize; --left)
        CheckPoint(points);
    CheckRulerRecords(points.PointCounts());
    place = size - bytes.Remaining();
    if (isComplete && bytes.Remaining() > 0)
        Warning(std::to_string(bytes.Remaining()) + " bytes after the last block, which are not read");
}

void BinaryTrackCheck::CheckPoint(PointCheck& points) {
    PointRecord point;
    const std::int64_t record = size - bytes.Remaining();
    point.track = Next<std::int32_t>();
    point.segment = Next<std::int32_t>();
    for (double* const number :
         {&point.place.rx(), &point.place.ry(), &point.relative.rx(), &point.relative.ry()})
        *number = Next<double>();
    point.method = Next<std::int32_t>();
    bytes.Skip(3 * sizeof(std::int32_t)); // Length, Width, Space: any number is valid
    place = record;
    if (!points.Take(point, [this](const std::string& text) { Warning(text); }))
        Fail("the first point is one of Track " + std::to_string(point.track) + ", and there is no Track 0");
}

void BinaryTrackCheck::CheckRulerRecords(const std::vector<std::int64_t>& pointCounts) {
    if (rulers == 0)
        return;
    TrackByteReader records(file);
    records.Skip(rulersAt);
    for (std::int32_t expected = 0; expected < rulers; ++expected) {
        place = size - records.Remaining();
        const auto number = records.Read<std::int32_t>();
        const auto path = records.Read<std::int32_t>();
        const auto segment = records.Read<std::int32_t>();
        records.Skip(kRecordSize - 3 * static_cast<std::int64_t>(sizeof(std::int32_t)));
        if (number != expected)
            Warning("ruler " + std::to_string(number) + " where " + std::to_string(expected) +
                    " was expected");
        if (path < 0 || path >= static_cast<std::int64_t>(pointCounts.size()) || segment < 0 ||
            segment >= pointCounts[static_cast<std::size_t>(path)] - 1)
            Warning("a ruler of segment " + std::to_string(segment) + " of Track " + std::to_string(path) +
                    ", which does not exist");
    }
}

bool BinaryTrackCheck::NextIs(std::int32_t blockTag) {
    if (!tag) {
        place = size - bytes.Remaining();
        if (bytes.Remaining() == 0)
            return false;
        Require(sizeof(std::int32_t), "the tag of a block");
        tag = Next<std::int32_t>();
    }
    if (*tag != blockTag)
        return false;
    tag.reset();
    return true;
}

void BinaryTrackCheck::Require(std::int64_t count, const char* what) {
    if (bytes.Remaining() >= count)
        return;
    place = size;
    Fail(std::string("the file ends within ") + what);
}

void BinaryTrackCheck::Fail(const std::string& text) {
    Error(text);
    throw Unreadable();
}
