#include "PathFiles.h"

#include "ConvertCSV.h"
#include "TargetFile.h"

namespace {

SaveResult ResultOf(int code) {
    switch (code) {
    case kOriginalNotReadable:
        return SaveResult::OriginalUnreadable;
    case kTargetNotWritable:
        return SaveResult::TargetUnwritable;
    default:
        return SaveResult::Saved;
    }
}

/// Text tracks are never written as text: the whole track becomes a binary one. What could not be read is not
/// written either, lest an empty track take a good one's place.
SaveResult ConvertTextTrack(Converter& text, const std::string& original, const std::string& target,
                            const std::vector<TrackPath>& paths, const WorldTransform& world) {
    TrackInfo info;
    HeightMap heights;
    std::int64_t size = 0;
    if (text.ReadInfo(original, info) != 0 || text.ReadHeightMap(original, info, heights, size) != 0)
        return SaveResult::OriginalUnreadable;
    return ResultOf(CreateBinaryConverter()->WriteTrack(target, info, heights, size, paths, world.widthScale,
                                                        world.xOffset, world.yOffset, world.xScale,
                                                        world.yScale));
}

} // namespace

SaveResult SaveWithPaths(const std::string& original, const std::string& target,
                         const std::vector<TrackPath>& paths, const WorldTransform& world) {
    const std::shared_ptr<Converter> converter = CreateConverter(original);
    if (dynamic_cast<ConvertCSV*>(converter.get()) != nullptr)
        return ConvertTextTrack(*converter, original, target, paths, world);
    return ResultOf(converter->UpdatePath(original, target, paths, world.widthScale, world.xOffset,
                                          world.yOffset, world.xScale, world.yScale));
}
