#pragma once

#include "IndependentTrack.h"

#include <vector>

/// A small track whose heights rise to the right and downwards from 0, with these points of paths; their
/// world positions are computed from the relative ones.
independent::Track SmallTrack(std::vector<independent::Segment> segments = {}, int width = 40,
                              int height = 20);

/// Points in a row across the canvas at height y, with distinct parameters: length base + point,
/// width base + 10 + point, space base + 20 + point.
std::vector<independent::Segment> PathAcross(int path, int points, double y, int base);
