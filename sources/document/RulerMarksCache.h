#pragma once

#include "document/RulerMarksBuilder.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <functional>
#include <vector>

/// Keeps the ruler marks of all paths up to date by computing only the segments that changed and those that
/// the running offset of a changed one reaches. It must be told of every change to points and parameters;
/// the result is that of computing everything.
class RulerMarksCache {
  public:
    /// Called with marks that go away and with marks that come in their place.
    using Touched = std::function<void(std::size_t path, const RulerMarks& marks)>;

    /// Point `point` of path `path` was moved or added.
    void PointChanged(std::size_t path, std::size_t point);
    /// A parameter of segment `segment` of path `path` was set.
    void SegmentChanged(std::size_t path, std::size_t segment);
    /// Paths from number `count` on are gone.
    void PathsRemoved(std::size_t count);
    /// Anything may have changed.
    void AllChanged() { entries.clear(); }

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
        [[nodiscard]] bool IsUpToDate() const { return firstChanged > lastChanged; }
    };

    static void MatchSegmentCount(TrackPath& path, std::size_t index, Entry& entry, const Touched& touched);
    void UpdatePaths(std::vector<TrackPath>& paths, const Touched& touched);
    void UpdatePath(TrackPath& path, std::size_t index, const Touched& touched);

    QSize size;
    std::vector<Entry> entries;
    std::size_t ticks = 0; ///< of all entries
    bool limited = false;  ///< whether the ticks did not suffice, so that any change may shift them
};
