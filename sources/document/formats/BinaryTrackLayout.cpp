#include "document/formats/BinaryTrackLayout.h"

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace {

void WritePoint(TrackByteWriter& out, const QPointF& point) {
    out.Write(double{point.x()});
    out.Write(double{point.y()});
}

/// A block's tag and the number of its records.
void WriteBlockHeader(TrackByteWriter& out, std::int32_t tag, std::size_t count) {
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw std::length_error("Too many records for one block");
    out.Write(tag);
    out.Write(static_cast<std::int32_t>(count));
}

std::size_t PointCount(const std::vector<TrackPath>& paths) {
    std::size_t count = 0;
    for (const TrackPath& path : paths)
        count += path.points.size();
    return count;
}

class RulerRecords {
  public:
    RulerRecords(TrackByteWriter& writer, const WorldTransform& worldTransform)
        : out(writer), transform(worldTransform) {}

    void Write(const TrackPath& path, std::size_t pathIndex) {
        for (std::size_t segment = 0; segment < path.rulerMarks.size(); ++segment) {
            const RulerMarks& marks = path.rulerMarks[segment];
            for (std::size_t tick = 0; tick < marks.tickStarts.size(); ++tick) {
                out.Write(index++);
                out.Write(static_cast<std::int32_t>(pathIndex));
                out.Write(static_cast<std::int32_t>(segment));
                WritePoint(out, transform.PointOf(marks.tickStarts[tick]));
                WritePoint(out, transform.PointOf(marks.tickEnds.at(tick)));
                out.Write(std::int32_t{path.methods.at(segment)});
                out.Write(transform.WidthOf(path.widths.at(segment)));
            }
        }
    }

  private:
    TrackByteWriter& out;
    const WorldTransform& transform;
    std::int32_t index = 0;
};

void WriteSegmentRecords(TrackByteWriter& out, const TrackPath& path, std::size_t pathIndex,
                         const WorldTransform& transform) {
    for (std::size_t point = 0; point < path.points.size(); ++point) {
        out.Write(static_cast<std::int32_t>(pathIndex));
        out.Write(static_cast<std::int32_t>(point));
        WritePoint(out, transform.PointOf(path.points[point]));
        WritePoint(out, path.points[point]);
        out.Write(std::int32_t{path.methods.at(point)});
        out.Write(std::int32_t{path.lengths.at(point)});
        out.Write(std::int32_t{path.widths.at(point)});
        out.Write(std::int32_t{path.spaces.at(point)});
    }
}

} // namespace

void WriteBinaryPathBlocks(TrackByteWriter& out, const std::vector<TrackPath>& paths,
                           const WorldTransform& transform) {
    WriteBlockHeader(out, BinaryTrackLayout::kRulerTag, RulerTicksHeld(paths));
    RulerRecords rulers(out, transform);
    for (std::size_t i = 0; i < paths.size(); ++i)
        rulers.Write(paths[i], i);

    WriteBlockHeader(out, BinaryTrackLayout::kSegmentTag, PointCount(paths));
    for (std::size_t i = 0; i < paths.size(); ++i)
        WriteSegmentRecords(out, paths[i], i, transform);
}
