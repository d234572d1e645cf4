#include "Check.h"
#include "FuzzFolder.h"
#include "TrackChecks.h"
#include "document/formats/ConvertCSV.h"

#include <QImage>

// Any bytes, read as a text track by all four operations in the order in which the window calls them;
// a track that could be read is then saved as the editor saves a text track.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFolder folder;
    const int freeDescriptor = FreeDescriptor();
    constexpr double kLowestStart = 32768.0;
    constexpr double kHighestStart = -32768.0;
    const std::string file = "input.trk";
    Store(file, data, size);

    ConvertCSV converter;
    TrackInfo info;
    info.minHeight = kLowestStart;
    info.maxHeight = kHighestStart;
    const bool hasInfo = converter.ReadInfo(file, info) == 0;
    CheckRange(info.minHeight, info.maxHeight, kLowestStart, kHighestStart);
    if (hasInfo) {
        Check(info.columnPositions.size() == static_cast<std::size_t>(info.width),
              "there is a position for each column");
        Check(info.rowPositions.size() == static_cast<std::size_t>(info.height),
              "there is a position for each row");
    }
    QImage image;
    if (converter.ReadImage(file, info, info.minHeight, info.maxHeight, image) == 0)
        CheckImage(image, info);
    HeightMap heights;
    std::int64_t heightsSize = 0;
    const bool hasHeights = converter.ReadHeightMap(file, info, heights, heightsSize) == 0;
    if (hasHeights) {
        Check(heights.size() == static_cast<std::size_t>(info.width) * static_cast<std::size_t>(info.height),
              "the map has a cell for each pixel");
        Check(heightsSize == std::int64_t{info.width} * info.width, "the reported size is width x width");
    }
    std::vector<TrackPath> paths;
    static_cast<void>(converter.ReadPath(file, paths));
    CheckPaths(paths, size);
    if (hasInfo && hasHeights)
        CheckRoundTrip(info, heights, paths);
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return 0;
}
