#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <string>
#include <vector>

/// Which of the coordinates of a list of points count.
enum class Coordinates { Relative, World };

/// The points of paths as comma-separated values, with the columns of the text encoding's path section. Every
/// number reads back bit for bit.
std::string PathsAsCsv(const std::vector<TrackPath>& paths, const WorldTransform& world);

/// Reads such a file, or one that holds the section of a text track alone. The columns are found by their
/// names and may be in any order; the parameters and Segment may be missing.
/// @throws Failure with ExitCode::Unreadable and the line, for whatever does not make clear what is meant
std::vector<TrackPath> PathsFromCsv(const std::string& file, const WorldTransform& world,
                                    Coordinates counting);
