#pragma once

#include "TrackPath.h"

#include <string>
#include <vector>

/// The factors that take a normalised point to the world: x * xScale + xOffset, y * yScale + yOffset; a
/// segment's width to the world: times widthScale.
struct WorldTransform {
    double widthScale = 1.0;
    double xOffset = 0.0;
    double yOffset = 0.0;
    double xScale = 1.0;
    double yScale = 1.0;
};

/// How writing a track with new paths ended.
enum class SaveResult { Saved, OriginalUnreadable, TargetUnwritable };

/// Writes `original`, of either encoding, with `paths` in place of its own as the binary track file `target`.
/// A target that cannot be written whole, or whose original cannot be read whole, is left as it was.
[[nodiscard]] SaveResult SaveWithPaths(const std::string& original, const std::string& target,
                                       const std::vector<TrackPath>& paths, const WorldTransform& world);
