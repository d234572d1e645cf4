#pragma once

#include "document/PathsChange.h"
#include "document/RulerMarksBuilder.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <functional>
#include <vector>

/// Keeps the ruler marks of all paths up to date by recomputing only the changed segments and those whose
/// running offset changes with them. It has to follow every change to the paths; the result equals a complete
/// computation.
class RulerMarksCache {
  public:
    /// Called with marks that are removed and with the marks that replace them.
    using Touched = std::function<void(std::size_t path, const RulerMarks& marks)>;

    /// Records a change; the next update recomputes the marks.
    void Follow(const PathsChange& change);
    /// The marks were changed by others since the last update.
    void Forget() { entries.clear(); }

    /// Brings the marks of all paths up to date for the aspect-corrected image size; with a size that has no
    /// area, there are no marks. Once RulerMarksBuilder::kMaxTotalTicks is used up, later segments and paths
    /// have fewer ticks or none.
    void Update(std::vector<TrackPath>& paths, const QSize& image, const Touched& touched);

  private:
    /// What is known about one path's marks.
    struct Entry {
        /// The running offset at the start of each segment whose marks are known, and after the last one.
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
    bool limited = false;  ///< whether the limit was reached, so that any change may shift ticks
};
