#pragma once

#include <QPointF>

#include <array>
#include <cstddef>
#include <vector>

/// The ruler marks of one segment, every point normalised to the canvas (0..1 across and down).
struct RulerMarks {
    using Band = std::array<QPointF, 4>;

    std::vector<QPointF> tickStarts; ///< first end of each tick line across the segment
    std::vector<QPointF> tickEnds;   ///< second end of each tick line
    std::vector<Band> bands;         ///< the rectangle round each tick: Length across, Width along the path
};

/// The four integer parameters that every point of a path carries for the segment it starts.
enum class SegmentParameter { Method, Length, Width, Space };

/// One point of a path with the parameters of the segment that it starts.
struct PathPoint {
    QPointF position; ///< normalised to the canvas (0..1 across and down)
    int method = 1;   ///< 1-based line type
    int length = 100;
    int width = 50;
    int space = 100;
};

/// One path over the height map. The four parameter lists have as many entries as `points`; entry j belongs
/// to the segment from point j to point j + 1, and the last point's entry is kept although it has no segment.
/// Lengths, widths and spaces are in pixels of the aspect-corrected height-map image.
struct TrackPath {
    std::vector<QPointF> points; ///< normalised to the canvas (0..1 across and down)
    std::vector<int> methods;    ///< 1-based line type
    std::vector<int> lengths;
    std::vector<int> widths;
    std::vector<int> spaces;
    std::vector<RulerMarks> rulerMarks; ///< derived: one entry a segment, or none

    /// The point at `index`, which must exist, with its entries of the four lists.
    [[nodiscard]] PathPoint PointAt(std::size_t index) const;
    /// Inserts a point before `index`, at most the number of points. Ruler marks stay as they are, here and
    /// below.
    void InsertPoint(std::size_t index, const PathPoint& point);
    void AppendPoint(const PathPoint& point) { InsertPoint(points.size(), point); }
    /// Removes the point at `index`, which must exist, from all lists.
    void RemovePoint(std::size_t index);
};

/// Appends a point that a track file holds to the paths read so far: to a new path when its track number is
/// the count of paths, otherwise to the last path.
/// @throws std::runtime_error when there is no path yet for it to belong to
void AppendPoint(int track, const PathPoint& point, std::vector<TrackPath>& paths);

/// How many ruler ticks the marks of all paths hold.
inline std::size_t RulerTicksHeld(const std::vector<TrackPath>& paths) {
    std::size_t count = 0;
    for (const TrackPath& path : paths) {
        for (const RulerMarks& marks : path.rulerMarks)
            count += marks.tickStarts.size();
    }
    return count;
}
