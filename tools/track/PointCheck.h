#pragma once

#include "document/formats/TrackInfo.h"

#include <QPointF>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// One record of a path's point as a file has it, in either encoding.
struct PointRecord {
    std::int32_t track = 0;
    std::int32_t segment = 0;
    QPointF place; ///< in world units
    QPointF relative;
    std::int32_t method = 1;
};

/// Follows the records of a track's paths and finds those that do not fit the ones before or themselves.
class PointCheck final {
  public:
    using Warn = std::function<void(const std::string& text)>;

    /// @param tolerance by which a place may differ from where the relative coordinates put it, as a part of
    ///        the map's extent
    PointCheck(const WorldTransform& world, double tolerance) : world(world), tolerance(tolerance) {}

    /// Takes the next record. @return false when readers fail: it is the first, and starts no path
    [[nodiscard]] bool Take(const PointRecord& point, const Warn& warn);

    /// How many points each path has so far.
    [[nodiscard]] const std::vector<std::int64_t>& PointCounts() const { return points; }

  private:
    void CheckNumbers(const PointRecord& point, const Warn& warn) const;
    void CheckPlace(const PointRecord& point, const Warn& warn) const;

    WorldTransform world;
    double tolerance;
    std::vector<std::int64_t> points;
};
