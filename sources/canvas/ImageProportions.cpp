#include "ImageProportions.h"

#include <algorithm>
#include <cmath>

namespace {

/// Widgets cannot be larger than this in either direction.
constexpr double kLargestSide = (1 << 24) - 1;

int WholePixels(double length) {
    return static_cast<int>(std::clamp(std::floor(length + 0.5), 1.0, kLargestSide));
}

} // namespace

QSize ShownImageSize(const QSize& image, double xResolution, double yResolution, double scale) {
    if (yResolution > xResolution)
        return {WholePixels(image.width() * scale),
                WholePixels(image.height() * scale * yResolution / xResolution)};
    return {WholePixels(image.width() * scale * xResolution / yResolution),
            WholePixels(image.height() * scale)};
}
