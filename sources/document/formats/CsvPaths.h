#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <string>
#include <vector>

class CsvLine;

/// Appends the point that a line of the path section holds: to a new path when its path number is the count
/// of paths so far, otherwise to the last path.
/// @throws std::runtime_error for a line with too few fields, and for a point that belongs to no path
void AppendPathPoint(const CsvLine& line, std::vector<TrackPath>& paths);

/// Copies a text track file up to its first "Ruler" line and writes the given paths after it, with an anchor
/// of zeros before them when the copy has none. Lines are copied unchanged, each with a single line feed.
/// @return kWritten; kOriginalNotReadable or kTargetNotWritable, the target is then unchanged
/// @throws std::exception for a line that cannot be split, and for a path whose parallel lists are too short
int WriteCsvPaths(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths,
                  const WorldTransform& transform);

/// Writes paths without a track: a text file of their section alone, whose points read back bit for bit.
/// Their world coordinates are unknown, and are written as the relative ones.
/// @return kWritten; kTargetNotWritable, the target is then unchanged
/// @throws std::exception for a path whose parallel lists are too short
int WriteCsvPathsAlone(const std::string& target, const std::vector<TrackPath>& paths);
