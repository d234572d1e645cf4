#include "document/ImageProportions.h"

#include <algorithm>
#include <cmath>

namespace {

/// Widgets cannot be larger than this in either direction.
constexpr double kLargestSide = (1 << 24) - 1;

int WholePixels(double length) {
    return static_cast<int>(std::clamp(std::floor(length + 0.5), 1.0, kLargestSide));
}

/// A side stretched by the larger resolution over the smaller one. Resolutions that give no ratio leave it as
/// it is.
double Stretched(double side, double larger, double smaller) {
    const double stretched = side * larger / smaller;
    return std::isfinite(stretched) && larger / smaller > 0.0 ? stretched : side;
}

} // namespace

QSize ShownImageSize(const QSize& image, double xResolution, double yResolution, double scale) {
    const double width = image.width() * scale;
    const double height = image.height() * scale;
    if (yResolution > xResolution)
        return {WholePixels(width), WholePixels(Stretched(height, yResolution, xResolution))};
    return {WholePixels(Stretched(width, xResolution, yResolution)), WholePixels(height)};
}
