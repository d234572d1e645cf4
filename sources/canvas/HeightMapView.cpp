#include "canvas/HeightMapView.h"

#include "raster/NearestScaler.h"
#include "raster/SmoothScaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

/// Copies the pixels of `place` from one image to another, each of which has its own origin.
void CopyPixels(const QImage& from, const QPoint& fromStart, QImage& to, const QPoint& toStart,
                const QRect& place) {
    const QPoint source = place.topLeft() - fromStart;
    const QPoint target = place.topLeft() - toStart;
    const auto bytes = static_cast<std::size_t>(place.width()) * sizeof(QRgb);
    for (int row = 0; row < place.height(); ++row)
        std::memcpy(reinterpret_cast<QRgb*>(to.scanLine(target.y() + row)) + target.x(),
                    reinterpret_cast<const QRgb*>(from.constScanLine(source.y() + row)) + source.x(), bytes);
}

} // namespace

void HeightMapView::Show(const QPixmap& pixmap, const QSize& newSize, const QRect& visible, double maxRead) {
    // The pixmap's own pixels, shared, where it has 32 bits a pixel, as those made from images do.
    source = pixmap.toImage().convertToFormat(QImage::Format_RGB32);
    if (pixmap.cacheKey() != key || newSize != size) {
        key = pixmap.cacheKey();
        size = newSize;
        valid = {};
    }
    mapSize = pixmap.size();
    mayRead = maxRead;
    KeepVisible(visible);
}

void HeightMapView::Clear() {
    *this = {};
}

QRegion HeightMapView::Copy(const QRect& part, QImage& out) {
    if (!keptPlace.contains(part))
        return Render(part, out, {0, 0});
    QRegion coarse = CompleteKept(part);
    CopyPixels(kept, keptPlace.topLeft(), out, part.topLeft(), part);
    return coarse;
}

double HeightMapView::ReadByRow(const QRect& place) const {
    const double across = std::max(1.0, static_cast<double>(mapSize.width()) / size.width());
    const double down = std::max(1.0, static_cast<double>(mapSize.height()) / size.height());
    return place.width() * across * down;
}

QRect HeightMapView::UpperRows(const QRect& place, double maxRead) const {
    const double rows = std::ceil(maxRead / ReadByRow(place));
    return {place.topLeft(),
            QSize(place.width(), static_cast<int>(std::clamp<double>(rows, 1, place.height())))};
}

QRect HeightMapView::Render(const QRect& part, QImage& out, const QPoint& place) {
    const QRect smooth = mayRead > 0 ? UpperRows(part, mayRead) : QRect(part.topLeft(), QSize(0, 0));
    SmoothScaler(source, size).Render(smooth, out, place);
    mayRead -= ReadByRow(smooth) * smooth.height();
    const QRect coarse = part.adjusted(0, smooth.height(), 0, 0);
    NearestScaler(source, size).Render(coarse, out, place + QPoint(0, smooth.height()));
    return coarse;
}

void HeightMapView::KeepVisible(const QRect& visible) {
    const bool fits = qint64{visible.width()} * visible.height() <= kMaxKept;
    const QRect place = fits ? visible : QRect();
    if (place == keptPlace)
        return;
    const QRegion still = valid.intersected(place);
    if (still.isEmpty() && place.size() == keptPlace.size()) {
        keptPlace = place; // the memory serves again
        valid = {};
        return;
    }
    QImage moved(place.size(), QImage::Format_RGB32);
    for (const QRect& rect : still)
        CopyPixels(kept, keptPlace.topLeft(), moved, place.topLeft(), rect);
    kept = moved;
    keptPlace = place;
    valid = still;
}

QRegion HeightMapView::CompleteKept(const QRect& part) {
    QRegion coarse;
    for (const QRect& rect : QRegion(part).subtracted(valid))
        coarse += Render(rect, kept, rect.topLeft() - keptPlace.topLeft());
    valid += QRegion(part).subtracted(coarse);
    return coarse;
}
