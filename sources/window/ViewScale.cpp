#include "window/ViewScale.h"

#include "canvas/qmaskwidget.h"
#include "document/TrackDocument.h"
#include "document/TrackGeometry.h"

#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kPercentPerStep = 5;
constexpr double kScalePerStep = 0.05;
constexpr int kStepsAtFullSize = 20;

} // namespace

ViewScale::ViewScale(QSlider& slider, QLabel& label, QScrollArea& area, QMaskWidget& canvas,
                     const TrackDocument& document)
    : slider(slider), label(label), area(area), canvas(canvas), document(document) {
}

void ViewScale::apply(int value) {
    label.setText(QStringLiteral("Scale:%1%").arg(value * kPercentPerStep));
    if (!document.hasImage())
        return;
    Anchor anchor = anchorAt(fixedPlace.value_or(centre()));
    canvas.resize(ShownImageSize(document.image().size(), document.info().xResolution,
                                 document.info().yResolution, value * kScalePerStep));
    scrollTo({anchor.place.x() - qRound(anchor.point.x() * canvas.width()),
              anchor.place.y() - qRound(anchor.point.y() * canvas.height())});
    anchor.canvas = canvas.geometry();
    last = anchor;
}

ViewScale::Anchor ViewScale::anchorAt(const QPoint& place) const {
    if (last && last->place == place && last->canvas == canvas.geometry())
        return *last;
    const QPointF onCanvas = place - canvas.pos();
    return {place, {onCanvas.x() / canvas.width(), onCanvas.y() / canvas.height()}, canvas.geometry()};
}

void ViewScale::scrollTo(const QPoint& topLeft) {
    const int hidden =
        area.isRightToLeft() ? topLeft.x() + canvas.width() - area.viewport()->width() : -topLeft.x();
    area.horizontalScrollBar()->setValue(hidden);
    area.verticalScrollBar()->setValue(-topLeft.y());
}

QPoint ViewScale::centre() const {
    return area.viewport()->rect().center();
}

void ViewScale::zoomBy(int steps, const QPoint& place) {
    setValue(slider.value() + steps, place);
}

void ViewScale::showFullSize(const QPoint& place) {
    setValue(kStepsAtFullSize, place);
}

void ViewScale::setValue(int value, const QPoint& place) {
    const QScopedValueRollback<std::optional<QPoint>> fixed(fixedPlace, place);
    slider.setValue(value);
}

/// The fitting value is applied unchanged, even beyond the slider's end; below the slider's start, where the
/// canvas would have no area, the slider's value is used.
void ViewScale::fit() {
    const QSize image = document.image().size();
    const double across = static_cast<double>(area.width()) / image.width();
    const double down = static_cast<double>(area.height()) / image.height();
    const int value = static_cast<int>(std::floor(std::min(across, down) * kStepsAtFullSize));
    apply(std::max(value, slider.minimum()));
    slider.setValue(value);
}
