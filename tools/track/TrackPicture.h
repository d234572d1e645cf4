#pragma once

#include "tools/track/LoadedTrack.h"

#include <QImage>
#include <QSize>

/// What is drawn over the height map.
struct PictureLayers {
    bool paths = true;
    bool ruler = true;
};

/// Draws a track as the editor's canvas shows it at this size: the smoothly scaled map, and over it the paths
/// and the ruler's bands with the canvas's pens. No segment is selected.
/// @throws Failure with ExitCode::Unreadable
QImage DrawTrack(const LoadedTrack& track, const QSize& size, const PictureLayers& layers);
