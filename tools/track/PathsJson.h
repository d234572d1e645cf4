#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <string>
#include <vector>

/// Paths as a collection of line strings in world coordinates, one feature a path, in the form that maps have
/// as JSON. The parameters of the segments are lists in the features' properties.
std::string PathsAsJson(const std::vector<TrackPath>& paths, const WorldTransform& world);

/// Reads such a file. A parameter may be one number for all segments of a path, or missing.
/// @throws Failure with ExitCode::Unreadable and the number of the feature
std::vector<TrackPath> PathsFromJson(const std::string& file, const WorldTransform& world);
