#include "canvas/AccessibleCanvas.h"

#include "canvas/qmaskwidget.h"

#include <QFileInfo>

namespace {

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    auto* const canvas = qobject_cast<QMaskWidget*>(object);
    return canvas != nullptr && className == QLatin1String("QMaskWidget") ? new AccessibleCanvas(*canvas)
                                                                          : nullptr;
}

} // namespace

AccessibleCanvas::AccessibleCanvas(QMaskWidget& canvas)
    : QAccessibleWidget(&canvas, QAccessible::Canvas), canvas(canvas) {
}

void AccessibleCanvas::Install() {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(MakeInterface);
        return true;
    }();
}

QString AccessibleCanvas::text(QAccessible::Text kind) const {
    return kind == QAccessible::Description ? Describe() : QAccessibleWidget::text(kind);
}

QString AccessibleCanvas::Describe() const {
    const TrackDocument& document = canvas.document();
    if (!document.hasImage())
        return QMaskWidget::tr("No track is open.");
    QString text = QMaskWidget::tr("Track %1, paths: %2.")
                       .arg(QFileInfo(QString::fromStdString(document.file())).fileName())
                       .arg(document.paths().size());
    const int path = canvas.currentPath();
    const int segment = canvas.currentSegment();
    if (segment >= 0 && document.segmentExists(path, segment))
        text += QMaskWidget::tr(" Chosen: segment %1 of path %2.").arg(segment + 1).arg(path + 1);
    return text + DescribePoint() + Keys();
}

QString AccessibleCanvas::Keys() {
    return QMaskWidget::tr(
        " Keys: A adds a point, Enter closes the paths, Backspace deletes the last point. P and Shift+P "
        "choose a point, arrows move it by a pixel, with Shift by ten, with Alt by a tenth, Delete removes "
        "it, Escape lets it go. N and Shift+N choose a segment, Insert puts a point on it. Ctrl+C copies "
        "the position. Ctrl with plus, minus, 0 and 1 changes the scale. F6 leads here.");
}

QString AccessibleCanvas::DescribePoint() const {
    const EditingState& state = canvas.editingState();
    if (state.dragPoint.isNull())
        return {};
    const QPoint pixel = CanvasScale(canvas.size()).toWidgetPixels(state.dragPoint);
    return QMaskWidget::tr(" Under the cursor: point %1 of path %2, at %3, %4.")
        .arg(state.hoverPoint + 1)
        .arg(state.hoverPath + 1)
        .arg(pixel.x())
        .arg(pixel.y());
}
