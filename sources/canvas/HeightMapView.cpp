#include "HeightMapView.h"

#include "SmoothScaler.h"

#include <cstring>

namespace {

/// Copies the pixels of `place` from one image to another, each of which starts at a place of its own.
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

void HeightMapView::Show(const QPixmap& pixmap, const QSize& newSize, const QRect& visible) {
    // The pixmap's own pixels, shared, where it has 32 bits a pixel, as those made from images do.
    source = pixmap.toImage().convertToFormat(QImage::Format_RGB32);
    if (pixmap.cacheKey() != key || newSize != size) {
        key = pixmap.cacheKey();
        size = newSize;
        valid = {};
    }
    KeepVisible(visible);
}

void HeightMapView::Clear() {
    *this = {};
}

void HeightMapView::Copy(const QRect& part, QImage& out) {
    if (!keptPlace.contains(part)) {
        SmoothScaler(source, size).Render(part, out, {0, 0});
        return;
    }
    CompleteKept(part);
    CopyPixels(kept, keptPlace.topLeft(), out, part.topLeft(), part);
}

void HeightMapView::KeepVisible(const QRect& visible) {
    const bool fits = qint64{visible.width()} * visible.height() <= kMostKept;
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

void HeightMapView::CompleteKept(const QRect& part) {
    const SmoothScaler scaler(source, size);
    for (const QRect& rect : QRegion(part).subtracted(valid))
        scaler.Render(rect, kept, rect.topLeft() - keptPlace.topLeft());
    valid += part;
}
