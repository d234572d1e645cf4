#include "document/RulerMarksCache.h"

#include <algorithm>

namespace {

/// The ticks of the segments in [first, end).
std::size_t TicksOf(const TrackPath& path, std::size_t first, std::size_t end) {
    std::size_t ticks = 0;
    for (std::size_t segment = first; segment < end; ++segment)
        ticks += path.rulerMarks[segment].bands.size();
    return ticks;
}

int TicksLeft(std::size_t used) {
    constexpr std::size_t kMax = RulerMarksBuilder::kMaxTotalTicks;
    return static_cast<int>(kMax - std::min(used, kMax));
}

} // namespace

void RulerMarksCache::Entry::Changed(std::size_t first, std::size_t last) {
    const bool nothing = IsUpToDate();
    firstChanged = nothing ? first : std::min(firstChanged, first);
    lastChanged = nothing ? last : std::max(lastChanged, last);
}

void RulerMarksCache::Entry::NothingChanged() {
    firstChanged = 1;
    lastChanged = 0;
}

RulerMarksCache::Entry* RulerMarksCache::EntryOf(PointIndex at) {
    const auto path = static_cast<std::size_t>(at.path);
    return path < entries.size() ? &entries[path] : nullptr;
}

/// The segments that meet in a point.
void RulerMarksCache::SegmentsChanged(PointIndex at) {
    const auto point = static_cast<std::size_t>(at.point);
    if (Entry* const entry = EntryOf(at))
        entry->Changed(point > 0 ? point - 1 : 0, point);
}

/// A point was inserted or removed. After the last point nothing shifts; elsewhere the path is recomputed.
void RulerMarksCache::PointsShifted(PointIndex at) {
    Entry* const entry = EntryOf(at);
    if (entry != nullptr && static_cast<std::size_t>(at.point) < entry->LastKnownPoint())
        *entry = {};
    SegmentsChanged(at);
}

void RulerMarksCache::Follow(const PathsChange& change) {
    const ChangeHandlers handlers{
        [this](const PathInserted& inserted) { KeepInStep(entries, inserted); },
        [this](const PathRemoved& removed) { KeepInStep(entries, removed); },
        [this](const PointInserted& inserted) { PointsShifted(inserted.at); },
        [this](const PointRemoved& removed) { PointsShifted(removed.at); },
        [this](const PointMoved& moved) { SegmentsChanged(moved.at); },
        [this](const ParameterSet& set) {
            Entry* const entry = EntryOf(set.at);
            const auto segment = static_cast<std::size_t>(set.at.point);
            if (entry != nullptr && set.parameter != SegmentParameter::Method)
                entry->Changed(segment, segment);
        },
        [this](const ParameterSetEverywhere& set) {
            if (set.parameter != SegmentParameter::Method)
                Forget();
        },
        [](const FinishedCountSet&) {},
        [this](const AllPathsReplaced&) { Forget(); },
    };
    std::visit(handlers, change);
}

void RulerMarksCache::Update(std::vector<TrackPath>& paths, const QSize& image, const Touched& touched) {
    if (image != size || limited)
        Forget();
    size = image;
    const bool all = entries.empty();
    UpdatePaths(paths, touched);
    if (limited && !all) {
        // The changed segments used up ticks that others need, perhaps earlier ones: recompute all in order.
        Forget();
        UpdatePaths(paths, touched);
    }
}

void RulerMarksCache::UpdatePaths(std::vector<TrackPath>& paths, const Touched& touched) {
    limited = false;
    entries.resize(paths.size());
    ticks = 0;
    for (const Entry& entry : entries)
        ticks += entry.ticks;
    for (std::size_t index = 0; index < paths.size(); ++index)
        UpdatePath(paths[index], index, touched);
}

void RulerMarksCache::MatchSegmentCount(TrackPath& path, std::size_t index, Entry& entry,
                                        const Touched& touched) {
    const std::size_t segments = path.points.empty() ? 0 : path.points.size() - 1;
    const std::size_t known = std::min({path.rulerMarks.size(), entry.offsets.size() - 1, segments});
    if (path.rulerMarks.size() > segments)
        entry.Changed(segments > 0 ? segments - 1 : 0, segments); // the ticks are counted again
    for (std::size_t gone = segments; gone < path.rulerMarks.size(); ++gone)
        touched(index, path.rulerMarks[gone]);
    path.rulerMarks.resize(segments);
    entry.offsets.resize(known + 1);
    entry.offsets.resize(segments + 1);
    if (known < segments)
        entry.Changed(known, segments - 1);
}

void RulerMarksCache::UpdatePath(TrackPath& path, std::size_t index, const Touched& touched) {
    Entry& entry = entries[index];
    MatchSegmentCount(path, index, entry, touched);
    if (entry.IsUpToDate())
        return;
    const RulerMarksBuilder builder(size);
    const std::size_t segments = path.rulerMarks.size();
    const std::size_t ofOthers = ticks - entry.ticks;
    std::size_t segment = std::min(entry.firstChanged, segments);
    double offset = entry.offsets[segment];
    std::size_t used = ofOthers + TicksOf(path, 0, segment);
    for (; segment < segments; ++segment) {
        // If this segment starts at the same offset as before, it and all later ones are unchanged.
        if (segment > entry.lastChanged &&
            RulerMarksBuilder::FirstTick(offset) == RulerMarksBuilder::FirstTick(entry.offsets[segment]))
            break;
        entry.offsets[segment] = offset;
        touched(index, path.rulerMarks[segment]);
        path.rulerMarks[segment] = builder.MarksOfSegment(path, segment, offset, TicksLeft(used));
        used += path.rulerMarks[segment].bands.size();
        touched(index, path.rulerMarks[segment]);
    }
    entry.offsets[segment] = offset;
    used += TicksOf(path, segment, segments);
    entry.ticks = used - ofOthers;
    ticks = used;
    limited = limited || TicksLeft(used) == 0;
    entry.NothingChanged();
}
