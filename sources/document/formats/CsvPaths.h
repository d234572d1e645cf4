#pragma once

#include "document/formats/TrackPath.h"

#include <vector>

class CsvLine;

/// Appends the point that a line of the path section holds: to a new path when its path number is the count
/// of paths so far, otherwise to the last path.
/// @throws std::runtime_error for a line with too few fields, and for a point that belongs to no path
void AppendPathPoint(const CsvLine& line, std::vector<TrackPath>& paths);
