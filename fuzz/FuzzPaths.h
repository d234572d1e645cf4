#pragma once

#include "InputBytes.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <vector>

/// A few paths with any coordinates and parameters, with ruler marks on some segments; the lists are parallel
/// as in the canvas.
std::vector<TrackPath> TakePaths(InputBytes& input);

/// Arbitrary factors.
WorldTransform TakeTransform(InputBytes& input);
