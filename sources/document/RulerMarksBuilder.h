#pragma once

#include "document/formats/TrackPath.h"

#include <QSize>

#include <cstdint>
#include <limits>
#include <vector>

/// Computes the ruler marks of a path, segment by segment: ticks across the segment at even steps, which
/// continue round corners, and a band round each tick.
class RulerMarksBuilder {
  public:
    /// A segment gets no more ticks than this, whatever its length and step.
    static constexpr int kMaxTicks = 100'000;

    /// All paths together get no more ticks than this: 256 MB of marks. No map shows as many, but the
    /// segments of a hostile file could require terabytes.
    static constexpr int kMaxTotalTicks = 2'000'000;

    /// What TickCount returns for more ticks than it can count.
    static constexpr std::uint64_t kUncountable = std::numeric_limits<std::uint64_t>::max();

    /// @param image the aspect-corrected image size, in whose pixels Length, Width and Space are measured
    explicit RulerMarksBuilder(const QSize& image) : image(image) {}

    /// The marks of segment `segment` of `path`, whose first tick is `offset` pixels after the segment's
    /// start.
    /// @param offset in: the running offset along the path; out: that of the next segment
    /// @param maxCount limit on its ticks besides kMaxTicks; the ticks after it are omitted A segment without
    /// a length, or with an end that is not finite, has no ticks; neither has any in an image without an
    /// area.
    [[nodiscard]] RulerMarks MarksOfSegment(const TrackPath& path, std::size_t segment, double& offset,
                                            int maxCount = kMaxTicks) const;

    /// The marks of every segment of a path.
    [[nodiscard]] std::vector<RulerMarks> MarksOfPath(const TrackPath& path) const;

    /// How many ticks all segments of the paths have without either limit, computed without building them.
    /// Ticks so far away that their ends overflow count too, although no marks are built for them: if the
    /// marks of the paths hold fewer ticks than this, some were omitted.
    /// @return kUncountable when a segment is longer than 2^52 pixels, or their sum is beyond 64 bits
    [[nodiscard]] std::uint64_t TickCount(const std::vector<TrackPath>& paths) const;

    /// The pixel at which a segment with this running offset starts its ticks: equal pixels give equal marks.
    [[nodiscard]] static double FirstTick(double offset);

  private:
    [[nodiscard]] std::uint64_t TickCountOfPath(const TrackPath& path) const;

    QSize image;
};
