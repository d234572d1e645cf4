#pragma once

#include "document/formats/TrackByteWriter.h"
#include "document/formats/TrackPath.h"
#include "document/formats/WorldTransform.h"

#include <vector>

/// Writes the ruler block, one record a tick, and the segment block, one record a point.
/// @throws std::exception when a path's parallel lists are too short or there are more records than a block
/// can count.
void WriteBinaryPathBlocks(TrackByteWriter& out, const std::vector<TrackPath>& paths,
                           const WorldTransform& transform);
