#include "document/PathFiles.h"

#include "document/RulerMarksCache.h"
#include "document/TrackGeometry.h"
#include "document/formats/ConvertCSV.h"
#include "document/formats/Converter.h"
#include "log/Log.h"

#include <algorithm>

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

/// Reads what a binary track takes over from a text track. A track without its last rows, or without its
/// section of paths, cannot be opened: a truncated original must not replace what was opened. Nor must a map
/// whose heights do not fit into raw values.
bool ReadAll(ConvertCSV& text, const std::string& original, bool wasOpened, TrackInfo& info,
             HeightMap& heights, std::int64_t& size) {
    return text.ReadInfo(original, info) == 0 &&
           text.ReadHeightMapToStore(original, info, heights, size) == 0 &&
           (!wasOpened || ConvertCSV::HasPathSection(original));
}

/// Text tracks are never written as text: the complete track is written as a binary one.
SaveResult ConvertTextTrack(ConvertCSV& text, const std::string& original, const std::string& target,
                            const std::vector<TrackPath>& paths, const WorldTransform& world,
                            bool wasOpened) {
    TrackInfo info;
    HeightMap heights;
    std::int64_t size = 0;
    if (!ReadAll(text, original, wasOpened, info, heights, size))
        return SaveResult::OriginalUnreadable;
    return ResultOf(CreateBinaryConverter()->WriteTrack(target, info, heights, size, paths, world.widthScale,
                                                        world.xOffset, world.yOffset, world.xScale,
                                                        world.yScale));
}

bool HoldsAllTicks(const std::vector<TrackPath>& paths, std::uint64_t ticks) {
    const std::uint64_t held = RulerTicksHeld(paths);
    if (held >= ticks)
        return true;
    LOG_LINE(ERROR) << "Cannot store the ruler: its marks hold " << held << " of " << ticks << " ticks";
    return false;
}

} // namespace

SaveResult SaveWithPaths(const std::string& original, const std::string& target,
                         const std::vector<TrackPath>& paths, const WorldTransform& world, bool wasOpened,
                         std::optional<std::uint64_t> ticks) {
    if (ticks && !HoldsAllTicks(paths, *ticks))
        return SaveResult::OriginalUnreadable;
    const std::shared_ptr<Converter> converter = CreateConverter(original);
    if (auto* const text = dynamic_cast<ConvertCSV*>(converter.get()))
        return ConvertTextTrack(*text, original, target, paths, world, wasOpened);
    return ResultOf(converter->UpdatePath(original, target, paths, world.widthScale, world.xOffset,
                                          world.yOffset, world.xScale, world.yScale));
}

SaveResult SaveWithNewMarks(const std::string& original, const std::string& target,
                            std::vector<TrackPath> paths) {
    TrackInfo info;
    if (CreateConverter(original)->ReadInfo(original, info) != 0)
        return SaveResult::OriginalUnreadable;
    const QSize map(info.width, info.height);
    const QSize shown = ShownImageSize(map, info.xResolution, info.yResolution);
    RulerMarksCache().Update(paths, shown, [](std::size_t, const RulerMarks&) {});
    return SaveWithPaths(original, target, paths, WorldOf(info, map), true,
                         RulerMarksBuilder(shown).TickCount(paths));
}

WorldTransform WorldOf(const TrackInfo& info, const QSize& map) {
    return {std::min(info.xResolution, info.yResolution), info.xOffset, info.yOffset,
            map.width() * info.xResolution, map.height() * info.yResolution};
}
