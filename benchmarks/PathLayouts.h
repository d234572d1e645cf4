#pragma once

#include <QRectF>

#include <string>

/// Writes a track file with only `paths` paths of `points` points each: random walks from a seed, whose
/// starts are spread evenly over `area`, and which stay inside.
/// @param area in normalised coordinates
/// @param step the longest step, as a fraction of the area's width
void WritePathFile(const std::string& file, int paths, int points, const QRectF& area, double step);
