#include "document/RulerMarksBuilder.h"

#include <algorithm>
#include <cmath>

namespace {

double Distance(const QPointF& one, const QPointF& other) {
    return std::hypot(one.x() - other.x(), one.y() - other.y());
}

bool IsFinite(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// One segment in image pixels and the marks that are added along it.
class SegmentRuler {
  public:
    SegmentRuler(const QSize& image, const TrackPath& path, std::size_t segment)
        : width(image.width()),
          height(image.height()),
          start(InPixels(path.points[segment])),
          end(InPixels(path.points[segment + 1])),
          length(Distance(start, end)),
          halfBand(path.widths[segment] * 0.5) {
        const double dx = start.x() - end.x();
        const double dy = start.y() - end.y();
        halfTick = {path.lengths[segment] * std::abs(dy) / (2.0 * length),
                    path.lengths[segment] * std::abs(dx) / (2.0 * length)};
        if (dx * dy < 0.0)
            halfTick.ry() = -halfTick.y();
    }

    [[nodiscard]] double Length() const { return length; }

    [[nodiscard]] bool CanHoldTicks() const {
        return std::isfinite(length) && length > 0.0 && IsFinite(halfTick);
    }

    /// Appends nothing where the numbers overflow: such marks could be neither painted nor stored.
    void AppendTick(double at, RulerMarks& marks) const {
        const QPointF centre = PointAt(at);
        const QPointF before = PointAt(at - halfBand);
        const QPointF after = PointAt(at + halfBand);
        if (!IsFinite(centre) || !IsFinite(before) || !IsFinite(after))
            return;
        marks.tickStarts.push_back(FirstEnd(centre));
        marks.tickEnds.push_back(SecondEnd(centre));
        marks.bands.push_back({FirstEnd(before), SecondEnd(before), SecondEnd(after), FirstEnd(after)});
    }

  private:
    [[nodiscard]] QPointF InPixels(const QPointF& point) const {
        return {point.x() * width, point.y() * height};
    }
    [[nodiscard]] QPointF Normalized(double x, double y) const { return {x / width, y / height}; }

    /// The point at a distance from the start, beyond the segment's ends too.
    [[nodiscard]] QPointF PointAt(double distance) const {
        return {((length - distance) * start.x() + distance * end.x()) / length,
                ((length - distance) * start.y() + distance * end.y()) / length};
    }
    [[nodiscard]] QPointF FirstEnd(const QPointF& centre) const {
        return Normalized(centre.x() - halfTick.x(), centre.y() + halfTick.y());
    }
    [[nodiscard]] QPointF SecondEnd(const QPointF& centre) const {
        return Normalized(centre.x() + halfTick.x(), centre.y() - halfTick.y());
    }

    double width;
    double height;
    QPointF start;
    QPointF end;
    double length;
    double halfBand;
    QPointF halfTick;
};

/// Where the ticks of a segment are, in pixels from its start: at integers, so that the arithmetic is exact.
class TickPositions {
  public:
    TickPositions(double offset, int space)
        : first(RulerMarksBuilder::FirstTick(offset)), step(std::max(1.0, space + 1.0)) {}

    [[nodiscard]] double operator[](std::uint64_t tick) const {
        return first + static_cast<double>(tick) * step;
    }

    /// How many there are before a finite distance; kUncountable beyond what doubles count one by one.
    [[nodiscard]] std::uint64_t CountBefore(double distance) const {
        constexpr double kCountable = 4503599627370496.0; // 2^52
        if (distance >= kCountable)
            return RulerMarksBuilder::kUncountable;
        if (!(distance > first))
            return 0;
        const auto farthest = static_cast<std::uint64_t>(std::ceil(distance) - 1.0 - first);
        return farthest / static_cast<std::uint64_t>(step) + 1;
    }

  private:
    double first;
    double step;
};

/// The running offset of the next segment, whose first tick follows at `next`. A segment that ran out of
/// ticks before its end, or that has no finite length, carries over 0, never a negative offset or NaN.
double OffsetAfter(double next, double length) {
    const double beyond = next - length;
    return beyond >= 0.0 ? beyond : 0.0;
}

} // namespace

double RulerMarksBuilder::FirstTick(double offset) {
    return std::isfinite(offset) ? std::trunc(offset) : 0.0;
}

RulerMarks RulerMarksBuilder::MarksOfSegment(const TrackPath& path, std::size_t segment, double& offset,
                                             int maxCount) const {
    RulerMarks marks;
    if (image.isEmpty())
        return marks;
    const SegmentRuler ruler(image, path, segment);
    const TickPositions positions(offset, path.spaces[segment]);
    std::uint64_t ticks = 0;
    if (ruler.CanHoldTicks()) {
        const auto limit = static_cast<std::uint64_t>(std::clamp(maxCount, 0, kMaxTicks));
        ticks = std::min(positions.CountBefore(ruler.Length()), limit);
        for (std::uint64_t tick = 0; tick < ticks; ++tick)
            ruler.AppendTick(positions[tick], marks);
    }
    offset = OffsetAfter(positions[ticks], ruler.Length());
    return marks;
}

std::vector<RulerMarks> RulerMarksBuilder::MarksOfPath(const TrackPath& path) const {
    std::vector<RulerMarks> marks;
    double offset = 0.0;
    for (std::size_t segment = 0; segment + 1 < path.points.size(); ++segment)
        marks.push_back(MarksOfSegment(path, segment, offset));
    return marks;
}

std::uint64_t RulerMarksBuilder::TickCount(const std::vector<TrackPath>& paths) const {
    std::uint64_t count = 0;
    for (const TrackPath& path : paths) {
        const std::uint64_t ofPath = TickCountOfPath(path);
        if (ofPath > kUncountable - count)
            return kUncountable;
        count += ofPath;
    }
    return count;
}

std::uint64_t RulerMarksBuilder::TickCountOfPath(const TrackPath& path) const {
    std::uint64_t count = 0;
    double offset = 0.0;
    for (std::size_t segment = 0; segment + 1 < path.points.size() && !image.isEmpty(); ++segment) {
        const SegmentRuler ruler(image, path, segment);
        const TickPositions positions(offset, path.spaces[segment]);
        const std::uint64_t ticks = ruler.CanHoldTicks() ? positions.CountBefore(ruler.Length()) : 0;
        if (ticks > kUncountable - count)
            return kUncountable;
        count += ticks;
        offset = OffsetAfter(positions[ticks], ruler.Length());
    }
    return count;
}
