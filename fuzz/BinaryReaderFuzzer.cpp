#include "Check.h"
#include "FuzzFolder.h"
#include "TrackChecks.h"
#include "document/formats/ConvertBIN.h"

#include <QImage>

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

namespace {

constexpr double kEmptyLowest = 1e38;
constexpr double kEmptyHighest = -1e38;

std::optional<independent::Track> ReadIndependently(const std::string& file) {
    try {
        return independent::ReadBinary(ContentOf(file));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

/// The range, cell by cell.
void CheckSameRange(const TrackInfo& info, const independent::Track& track) {
    double lowest = kEmptyLowest;
    double highest = kEmptyHighest;
    for (const std::int16_t cell : track.cells) {
        const double height = cell * track.zResolution + track.zOffset;
        if (cell == independent::kNoMeasurement || !std::isfinite(height))
            continue;
        lowest = std::min(lowest, height);
        highest = std::max(highest, height);
    }
    Check(info.minHeight == lowest && info.maxHeight == highest, "the range is that of the cells");
}

} // namespace

// Any bytes, read as a binary track by all four operations; where a plain reader can read the file as well,
// both must find the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFolder folder;
    const int freeDescriptor = FreeDescriptor();
    const std::string file = "input.trk";
    Store(file, data, size);

    ConvertBIN converter;
    TrackInfo info;
    info.width = -1; // stays so for a file of another version
    const int infoResult = converter.ReadInfo(file, info);
    const bool hasInfo = infoResult == 0 && info.width >= 0;
    if (hasInfo) {
        Check(info.height >= 0, "no height is negative");
        CheckRange(info.minHeight, info.maxHeight, kEmptyLowest, kEmptyHighest);
    }
    QImage image;
    const int imageResult = converter.ReadImage(file, info, info.minHeight, info.maxHeight, image);
    if (imageResult == 0)
        CheckImage(image, info);
    HeightMap heights;
    std::int64_t heightsSize = 0;
    Check(converter.ReadHeightMap(file, info, heights, heightsSize) == -1 && heights.empty(),
          "a height map is not offered");
    std::vector<TrackPath> paths;
    const int pathResult = converter.ReadPath(file, paths);
    CheckPaths(paths, size);
    if (const auto track = ReadIndependently(file)) {
        Check(hasInfo && info.width == track->width && info.height == track->height,
              "a well-formed file's information is read");
        CheckSameRange(info, *track);
        CheckSameRecords(track->segments, paths);
        Check(pathResult == 0 || paths.empty(), "a well-formed file's paths are read");
        if (pathResult == 0)
            CheckRoundTrip(info, track->cells, paths);
    }
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return 0;
}
