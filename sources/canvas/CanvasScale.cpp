#include "canvas/CanvasScale.h"

#include <algorithm>
#include <cmath>

namespace {

double ClampToMargin(double position, int side) {
    return std::max(std::min(position, side - CanvasScale::kEdgeMargin), CanvasScale::kEdgeMargin);
}

} // namespace

CanvasScale::CanvasScale(const QSize& canvas) : canvas(canvas.expandedTo({1, 1})) {
}

QPointF CanvasScale::toNormalized(const QPointF& pixel) const {
    return {pixel.x() / canvas.width(), pixel.y() / canvas.height()};
}

QPointF CanvasScale::ClampToMargin(const QPointF& pixel) const {
    return {::ClampToMargin(pixel.x(), canvas.width()), ::ClampToMargin(pixel.y(), canvas.height())};
}

double Distance(const QPointF& one, const QPointF& other) {
    return std::hypot(one.x() - other.x(), one.y() - other.y());
}
