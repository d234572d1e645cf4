#pragma once

#include "tools/track/LoadedTrack.h"

#include <QImage>
#include <QSize>

/// What a picture of a track shows over its height map.
struct PictureLayers {
    bool paths = true;
    bool ruler = true;
};

/// A track as the editor's canvas shows it at a size: the map scaled smoothly, and over it the paths and the
/// ruler's bands with the canvas's pens. No segment is chosen.
/// @throws Failure with ExitCode::Unreadable
QImage DrawTrack(const LoadedTrack& track, const QSize& size, const PictureLayers& layers);
