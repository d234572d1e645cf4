#pragma once

#include "document/formats/TrackPath.h"

#include <QSize>

#include <cstdint>
#include <limits>
#include <vector>

/// Computes the ruler marks of a path, segment by segment: ticks across the segment at even steps, which
/// continue round the corners, and a band round each tick.
class RulerMarksBuilder {
  public:
    /// A segment gets no more ticks than this, whatever its length and step.
    static constexpr int kMostTicks = 100'000;

    /// All paths together get no more ticks than this: 256 MB of marks. No map shows as many, while the
    /// segments of a hostile file could ask for terabytes.
    static constexpr int kMostTicksOfAll = 2'000'000;

    /// What TickCount returns for more ticks than it can count.
    static constexpr std::uint64_t kUncountable = std::numeric_limits<std::uint64_t>::max();

    /// @param image the aspect-corrected image size, in whose pixels Length, Width and Space are measured
    explicit RulerMarksBuilder(const QSize& image) : image(image) {}

    /// The marks of segment `segment` of `path`, whose first tick stands `offset` pixels after the segment's
    /// start.
    /// @param offset in: the running offset along the path; out: that of the next segment
    /// @param most ticks it may have beside kMostTicks; those behind are left out
    /// A segment without a length, or with an end that is not finite, has no ticks;
    /// neither has any in an image without an area.
    [[nodiscard]] RulerMarks MarksOfSegment(const TrackPath& path, std::size_t segment, double& offset,
                                            int most = kMostTicks) const;

    /// The marks of every segment of a path.
    [[nodiscard]] std::vector<RulerMarks> MarksOfPath(const TrackPath& path) const;

    /// How many ticks all segments of the paths have when neither limit counts, found without building them.
    /// Ticks so far away that their ends overflow count too, though no marks are built for them: paths whose
    /// marks hold fewer ticks than this have had some left out.
    /// @return kUncountable when a segment is longer than 2^52 pixels, or their sum is beyond 64 bits
    [[nodiscard]] std::uint64_t TickCount(const std::vector<TrackPath>& paths) const;

    /// The whole pixel that a running offset starts its segment at: segments with the same one have the same
    /// marks.
    [[nodiscard]] static double FirstTick(double offset);

  private:
    [[nodiscard]] std::uint64_t TickCountOfPath(const TrackPath& path) const;

    QSize image;
};
