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

/// One segment in image pixels and the marks that grow along it.
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

} // namespace

double RulerMarksBuilder::FirstTick(double offset) {
    return std::isfinite(offset) ? std::trunc(offset) : 0.0;
}

RulerMarks RulerMarksBuilder::MarksOfSegment(const TrackPath& path, std::size_t segment, double& offset,
                                             int most) const {
    RulerMarks marks;
    if (image.isEmpty())
        return marks;
    const SegmentRuler ruler(image, path, segment);
    const double step = std::max(1.0, path.spaces[segment] + 1.0);
    double at = FirstTick(offset);
    if (ruler.CanHoldTicks()) {
        const int limit = std::min(kMostTicks, most);
        for (int ticks = 0; ticks < limit && ruler.Length() > at; ++ticks, at += step)
            ruler.AppendTick(at, marks);
    }
    // A segment that ran out of ticks before its end, or has no length to speak of, hands on no distance that
    // could be negative or not a number.
    const double beyond = at - ruler.Length();
    offset = beyond >= 0.0 ? beyond : 0.0;
    return marks;
}

std::vector<RulerMarks> RulerMarksBuilder::MarksOfPath(const TrackPath& path) const {
    std::vector<RulerMarks> marks;
    double offset = 0.0;
    for (std::size_t segment = 0; segment + 1 < path.points.size(); ++segment)
        marks.push_back(MarksOfSegment(path, segment, offset));
    return marks;
}
