#pragma once

#include "document/formats/TrackPath.h"
#include "document/formats/WorldTransform.h"

#include <string>
#include <vector>

/// How writing a track with new paths ended.
enum class SaveResult { Saved, OriginalUnreadable, TargetUnwritable };

/// Writes `original`, of either encoding, with `paths` in place of its own as the binary track file `target`.
/// A target that cannot be written whole, or whose original cannot be read whole, is left as it was.
/// @param wasOpened whether the paths of `original` were read before: a text track without their section was
/// cut since, then, and is not whole
[[nodiscard]] SaveResult SaveWithPaths(const std::string& original, const std::string& target,
                                       const std::vector<TrackPath>& paths, const WorldTransform& world,
                                       bool wasOpened);
