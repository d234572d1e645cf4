#include "raster/SlantedLine.h"

#include <algorithm>
#include <cmath>

SlantedLine::Band::Band(double slope, double rise, double low, double high)
    : left(std::min(low / slope, high / slope)),
      right(std::max(low / slope, high / slope)),
      shift(rise / slope) {
}

SlantedLine::SlantedLine(const QPointF& way, double width)
    : SlantedLine(way, width / 2.0, std::sqrt(way.x() * way.x() + way.y() * way.y())) {
}

SlantedLine::SlantedLine(const QPointF& way, double half, double length)
    : reach(half * (std::abs(way.x() / length) + std::abs(way.y() / length))),
      top(std::min(0.0, way.y()) - reach),
      bottom(std::max(0.0, way.y()) + reach),
      along(way.x() / length, way.y() / length, -half, length + half),
      across(-(way.y() / length), way.x() / length, -half, half) {
}
