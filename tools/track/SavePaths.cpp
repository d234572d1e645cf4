#include "tools/track/SavePaths.h"

#include "basalt/AtomicFile.h"
#include "document/PathFiles.h"
#include "document/RulerMarksBuilder.h"
#include "document/RulerMarksCache.h"
#include "document/TrackGeometry.h"
#include "tools/commandline/Failure.h"
#include "tools/track/CapturedLog.h"

#include <algorithm>

namespace {

/// The reason why a file cannot be written, as far as opening it shows.
std::string ReasonFor(const std::string& target) {
    const AtomicFile file(target);
    return file.IsOpen() ? "cannot be written" : file.Failure().message();
}

} // namespace

WorldTransform WorldOf(const TrackInfo& info) {
    return {std::min(info.xResolution, info.yResolution), info.xOffset, info.yOffset,
            info.width * info.xResolution, info.height * info.yResolution};
}

QSize ShownSizeOf(const TrackInfo& info) {
    return ShownImageSize({info.width, info.height}, info.xResolution, info.yResolution);
}

void ComputeRulerMarks(const TrackInfo& info, std::vector<TrackPath>& paths) {
    RulerMarksCache().Update(paths, ShownSizeOf(info), [](std::size_t, const RulerMarks&) {});
}

void SavePaths(const LoadedTrack& original, std::vector<TrackPath> paths, const std::string& target) {
    ComputeRulerMarks(original.info, paths);
    const std::uint64_t ticks = RulerMarksBuilder(ShownSizeOf(original.info)).TickCount(paths);
    const CapturedLog log;
    switch (SaveWithPaths(original.file, target, paths, WorldOf(original.info), original.hasPaths, ticks)) {
    case SaveResult::Saved:
        return;
    case SaveResult::OriginalUnreadable:
        throw Failure(ExitCode::Unreadable, original.file + ": " + log.FirstError());
    case SaveResult::TargetUnwritable:
        throw Failure(ExitCode::Unwritable, target + ": " + ReasonFor(target));
    }
}
