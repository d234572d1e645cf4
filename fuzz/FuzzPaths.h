#pragma once

#include "document/formats/TrackPath.h"
#include "document/formats/WorldTransform.h"

#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

/// A few paths with any coordinates and parameters, with ruler marks on some segments; the lists are parallel
/// as those of the canvas always are.
std::vector<TrackPath> TakePaths(FuzzedDataProvider& input);

/// Any factors.
WorldTransform TakeTransform(FuzzedDataProvider& input);
