#include "CanvasScale.h"

#include <algorithm>
#include <cmath>

namespace {

/// Beyond the largest widget, and near enough to 0 for sums and differences to stay whole numbers.
constexpr double kFarthestPixel = 1 << 26;

int NearestPixel(double position) {
    if (std::isnan(position))
        return 0;
    const double rounded = std::clamp(position, -kFarthestPixel, kFarthestPixel) + 0.5;
    const int whole = static_cast<int>(rounded);
    return whole - (rounded < whole ? 1 : 0);
}

double ClampToMargin(double position, int side) {
    return std::max(std::min(position, side - CanvasScale::kEdgeMargin), CanvasScale::kEdgeMargin);
}

} // namespace

CanvasScale::CanvasScale(const QSize& canvas) : canvas(canvas.expandedTo({1, 1})) {
}

QPointF CanvasScale::ToNormalized(const QPointF& pixel) const {
    return {pixel.x() / canvas.width(), pixel.y() / canvas.height()};
}

QPoint CanvasScale::ToWidgetPixels(const QPointF& point) const {
    return {NearestPixel(canvas.width() * point.x()), NearestPixel(canvas.height() * point.y())};
}

QPointF CanvasScale::ClampToMargin(const QPointF& pixel) const {
    return {::ClampToMargin(pixel.x(), canvas.width()), ::ClampToMargin(pixel.y(), canvas.height())};
}

double Distance(const QPointF& one, const QPointF& other) {
    return std::hypot(one.x() - other.x(), one.y() - other.y());
}
