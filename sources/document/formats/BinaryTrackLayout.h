#pragma once

#include "document/formats/TrackBytes.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// The constants of the binary encoding.
namespace BinaryTrackLayout {

constexpr std::size_t kMagicSize = 8;
/// What the writer puts first: the word, two blanks and the end of a C string.
constexpr std::string_view kMagic("Track  \0", kMagicSize);
/// What a reader looks for in those bytes.
constexpr std::string_view kMagicWord = "Tra";

constexpr std::int32_t kVersion = 1;

/// Where the number of columns is, that of rows after it, and where the height map begins.
constexpr std::int64_t kDimensionsOffset = 60;
constexpr std::int64_t kMapOffset = 68;

/// The tags of the blocks after the height map.
constexpr std::int32_t kAnchorTag = 'A';
constexpr std::int32_t kRulerTag = 'R';
constexpr std::int32_t kSegmentTag = 'S';

constexpr std::int64_t kAnchorSize = 24;
/// The bytes of a ruler record and of a segment record.
constexpr std::int64_t kRecordSize = 56;

} // namespace BinaryTrackLayout

/// Writes the ruler block, one record a tick, and the segment block, one record a point.
/// @throws std::exception when a path's parallel lists are too short or there are more records than a block
/// can count.
void WriteBinaryPathBlocks(TrackByteWriter& out, const std::vector<TrackPath>& paths,
                           const WorldTransform& transform);
