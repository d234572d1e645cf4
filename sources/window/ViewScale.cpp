#include "window/ViewScale.h"

#include "canvas/qmaskwidget.h"
#include "document/ImageProportions.h"
#include "document/TrackDocument.h"

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
    if (document.hasImage())
        canvas.resize(ShownImageSize(document.image().size(), document.info().xResolution,
                                     document.info().yResolution, value * kScalePerStep));
}

/// The value that fits is applied as it is, also beyond the slider's end; below the slider's start, where the
/// canvas would have no area, the slider's own value counts.
void ViewScale::fit() {
    const QSize image = document.image().size();
    const double across = static_cast<double>(area.width()) / image.width();
    const double down = static_cast<double>(area.height()) / image.height();
    const int value = static_cast<int>(std::floor(std::min(across, down) * kStepsAtFullSize));
    apply(std::max(value, slider.minimum()));
    slider.setValue(value);
}
