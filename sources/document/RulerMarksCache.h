#pragma once

#include "document/PathsChange.h"
#include "document/RulerMarksBuilder.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <functional>
#include <vector>

/// Keeps the ruler marks of all paths up to date by computing only the segments that changed and those that
/// the running offset of a changed one reaches. It has to follow every change to the paths; the result is
/// that of computing everything.
class RulerMarksCache {
  public:
    /// Called with marks that go away and with marks that come in their place.
    using Touched = std::function<void(std::size_t path, const RulerMarks& marks)>;

    /// Takes note of a change; marks follow with the next update.
    void Follow(const PathsChange& change);
    /// The marks are not those of the last update any more.
    void Forget() { entries.clear(); }

    /// Brings the marks of all paths up to date for the aspect-corrected image size; with a size that has no
    /// area, there are no marks. Path by path and segment by segment, those that find
    /// RulerMarksBuilder::kMostTicksOfAll used up have fewer or none.
    void Update(std::vector<TrackPath>& paths, const QSize& image, const Touched& touched);

  private:
    /// What is known of one path's marks.
    struct Entry {
        /// The running offset at the start of each segment whose marks are known, and behind the last one.
        std::vector<double> offsets{0.0};
        std::size_t ticks = 0; ///< in all segments together
        std::size_t firstChanged = 0;
        std::size_t lastChanged = static_cast<std::size_t>(-1); ///< all at first

        void Changed(std::size_t first, std::size_t last);
        void NothingChanged();
        /// Points up to and including this index had their segments computed.
        [[nodiscard]] std::size_t LastKnownPoint() const { return offsets.size() - 1; }
        [[nodiscard]] bool IsUpToDate() const { return firstChanged > lastChanged; }
    };

    [[nodiscard]] Entry* EntryOf(PointIndex at);
    void SegmentsChanged(PointIndex at);
    void PointsShifted(PointIndex at);
    static void MatchSegmentCount(TrackPath& path, std::size_t index, Entry& entry, const Touched& touched);
    void UpdatePaths(std::vector<TrackPath>& paths, const Touched& touched);
    void UpdatePath(TrackPath& path, std::size_t index, const Touched& touched);

    QSize size;
    std::vector<Entry> entries;
    std::size_t ticks = 0; ///< of all entries
    bool limited = false;  ///< whether the ticks did not suffice, so that any change may shift them
};
