#pragma once

#include "document/formats/TrackInfo.h"

#include <QPointF>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// One point record of a track file, in either encoding.
struct PointRecord {
    std::int32_t track = 0;
    std::int32_t segment = 0;
    QPointF place; ///< in world coordinates
    QPointF relative;
    std::int32_t method = 1;
};

/// Checks the point records of a track, in order, for inconsistencies.
class PointCheck final {
  public:
    using Warn = std::function<void(const std::string& text)>;

    /// @param tolerance the allowed difference between a place and its relative coordinates, as a fraction of
    ///        the map's extent
    PointCheck(const WorldTransform& world, double tolerance) : world(world), tolerance(tolerance) {}

    /// Checks the next record. @return false when readers fail: the first record does not start a path
    [[nodiscard]] bool Take(const PointRecord& point, const Warn& warn);

    /// The number of points of each path so far.
    [[nodiscard]] const std::vector<std::int64_t>& PointCounts() const { return points; }

  private:
    void CheckNumbers(const PointRecord& point, const Warn& warn) const;
    void CheckPlace(const PointRecord& point, const Warn& warn) const;

    WorldTransform world;
    double tolerance;
    std::vector<std::int64_t> points;
};
