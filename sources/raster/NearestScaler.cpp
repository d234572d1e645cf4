#include "raster/NearestScaler.h"

#include <cstdint>
#include <vector>

namespace {

/// The source pixel in which the centre of a target pixel lies.
int Nearest(int source, int target, int pixel) {
    return static_cast<int>((2 * std::int64_t{pixel} + 1) * source / (2 * std::int64_t{target}));
}

} // namespace

void NearestScaler::Render(const QRect& part, QImage& out, const QPoint& place) const {
    std::vector<int> columns;
    columns.reserve(static_cast<std::size_t>(part.width()));
    for (int column = part.left(); column <= part.right(); ++column)
        columns.push_back(Nearest(source.width(), target.width(), column));
    for (int row = 0; row < part.height(); ++row) {
        const auto* const line = reinterpret_cast<const QRgb*>(
            source.constScanLine(Nearest(source.height(), target.height(), part.top() + row)));
        auto* pixel = reinterpret_cast<QRgb*>(out.scanLine(place.y() + row)) + place.x();
        for (const int column : columns)
            *pixel++ = line[column] | 0xff000000U;
    }
}
