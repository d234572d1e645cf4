#pragma once

#include "InputBytes.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <vector>

/// A few paths with any coordinates and parameters, with ruler marks on some segments; the lists are parallel
/// as those of the canvas always are.
std::vector<TrackPath> TakePaths(InputBytes& input);

/// Any factors.
WorldTransform TakeTransform(InputBytes& input);
