#pragma once

#include <QRectF>

#include <string>

/// Writes a track file that holds nothing but `paths` paths of `points` points each: seeded walks in small
/// steps, their starts spread evenly over `room`, none of them leaving it.
/// @param room in normalised coordinates
/// @param step the longest step, as a part of the room's width
void WritePathFile(const std::string& file, int paths, int points, const QRectF& room, double step);
