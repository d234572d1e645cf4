#pragma once

#include <QSize>

/// The size of a height-map image at a view scale, stretched along one axis so that one unit of distance is
/// as long across as down: the axis with the larger resolution grows. Rounded to whole pixels, halves
/// upwards; at least 1 x 1. At scale 1 this is the aspect-corrected image size that segment parameters and
/// ruler marks are measured in.
/// @param image columns x rows
QSize ShownImageSize(const QSize& image, double xResolution, double yResolution, double scale = 1.0);
