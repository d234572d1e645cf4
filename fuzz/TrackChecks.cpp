#include "TrackChecks.h"

#include "Check.h"
#include "FuzzFolder.h"
#include "document/formats/Converter.h"

#include <QImage>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace {

/// A colour of the ramp black, blue, cyan, green, yellow, red, magenta, white: along each band
/// one channel changes while the other two are 0 or 255.
bool IsOnTheRamp(int red, int green, int blue) {
    const auto isEnd = [](int channel) { return channel == 0 || channel == 255; };
    const int moving = (isEnd(red) ? 0 : 1) + (isEnd(green) ? 0 : 1) + (isEnd(blue) ? 0 : 1);
    if (moving == 0)
        return true;
    if (moving > 1)
        return false;
    if (!isEnd(red))
        return green == 255 && blue == 0;
    if (!isEnd(green))
        return (red == 0 && blue == 255) || (red == 255 && blue == 0) || (red == 255 && blue == 255);
    return (red == 0 && green == 0) || (red == 0 && green == 255) || (red == 255 && green == 0);
}

bool SameInfo(const TrackInfo& found, const TrackInfo& expected) {
    return SameBits(found.xResolution, expected.xResolution) &&
           SameBits(found.yResolution, expected.yResolution) &&
           SameBits(found.zResolution, expected.zResolution) && SameBits(found.xOffset, expected.xOffset) &&
           SameBits(found.yOffset, expected.yOffset) && SameBits(found.zOffset, expected.zOffset) &&
           found.width == expected.width && found.height == expected.height;
}

} // namespace

bool SameBits(double one, double other) {
    return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

void CheckPaths(const std::vector<TrackPath>& paths, std::size_t fileSize) {
    std::size_t points = 0;
    for (const TrackPath& path : paths) {
        const std::size_t count = path.points.size();
        Check(count > 0, "a path has a point");
        Check(path.methods.size() == count && path.lengths.size() == count && path.widths.size() == count &&
                  path.spaces.size() == count,
              "the four lists are as long as the points");
        Check(path.rulerMarks.empty(), "ruler marks come back empty");
        points += count;
    }
    Check(points <= fileSize, "there are no more points than bytes");
}

void CheckRange(double lowest, double highest, double emptyLowest, double emptyHighest) {
    Check(std::isfinite(lowest) && std::isfinite(highest), "the height range is finite");
    Check(lowest <= highest || (lowest == emptyLowest && highest == emptyHighest),
          "the height range is one or is empty as it started");
}

void CheckImage(const QImage& image, const TrackInfo& info) {
    Check(image.width() == info.width && image.height() == info.height, "the image is as large as the map");
    Check(image.format() == QImage::Format_RGB888, "the image has 24 bits a pixel");
    constexpr int kMaxChecked = 64;
    for (int y = 0; y < std::min(image.height(), kMaxChecked); ++y) {
        const unsigned char* pixel = image.constScanLine(y);
        for (int x = 0; x < std::min(image.width(), kMaxChecked); ++x, pixel += 3)
            Check(IsOnTheRamp(pixel[0], pixel[1], pixel[2]), "every pixel has a colour of the ramp");
    }
}

void CheckSamePaths(const std::vector<TrackPath>& found, const std::vector<TrackPath>& expected) {
    Check(found.size() == expected.size(), "all written paths are read back");
    for (std::size_t i = 0; i < found.size(); ++i) {
        const TrackPath& one = found[i];
        const TrackPath& other = expected[i];
        Check(one.points.size() == other.points.size(), "all written points are read back");
        for (std::size_t j = 0; j < one.points.size(); ++j)
            Check(SameBits(one.points[j].x(), other.points[j].x()) &&
                      SameBits(one.points[j].y(), other.points[j].y()),
                  "points are read back as they were written");
        Check(one.methods == other.methods && one.lengths == other.lengths && one.widths == other.widths &&
                  one.spaces == other.spaces,
              "parameters are read back as they were written");
    }
}

void CheckSameRecords(const std::vector<independent::Segment>& records, const std::vector<TrackPath>& paths) {
    auto record = records.begin();
    for (const TrackPath& path : paths) {
        for (std::size_t j = 0; j < path.points.size(); ++j, ++record) {
            Check(record != records.end(), "there is a record for each point");
            Check(SameBits(record->relativeX, path.points[j].x()) &&
                      SameBits(record->relativeY, path.points[j].y()) && record->method == path.methods[j] &&
                      record->length == path.lengths[j] && record->width == path.widths[j] &&
                      record->space == path.spaces[j],
                  "a record holds its point");
        }
    }
    Check(record == records.end(), "there is no record without a point");
}

void CheckRoundTrip(const TrackInfo& info, const HeightMap& heights, const std::vector<TrackPath>& paths) {
    const auto binary = CreateBinaryConverter();
    Check(binary->WriteTrack("round.trk", info, heights, 0, paths, 1, 0, 0, 1, 1) == 0,
          "what was read can be written");
    TrackInfo info2;
    Check(binary->ReadInfo("round.trk", info2) == 0 && SameInfo(info2, info),
          "the information reads back as written");
    std::vector<TrackPath> paths2;
    Check(binary->ReadPath("round.trk", paths2) == 0, "the paths can be read back");
    CheckSamePaths(paths2, paths);
    try {
        const independent::Track track = independent::ReadBinary(ContentOf("round.trk"));
        Check(track.cells == heights, "the map reads back as written");
        CheckSameRecords(track.segments, paths);
    } catch (const std::runtime_error& failure) {
        Broken(std::string("what was written is well-formed: ") + failure.what());
    }
}
