#include "canvas/qmaskwidget.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "canvas/PathPainter.h"
#include "canvas/RulerOwner.h"
#include "document/PathFiles.h"
#include "document/formats/Converter.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

[[noreturn]] void ThrowTrackError(int line, const char* message) {
    throw Ve::Exception(line, "qmaskwidget", bERROR_TRACK, "QMaskWidget::SavePath", "%s", message);
}

/// Pixels that are painted at once; a larger place is painted in strips that stay in the processor's cache.
constexpr int kMostPainted = 1024 * 1024 / 4;

/// All device pixels that a rectangle of widget pixels touches.
QRect DeviceRect(const QRect& rect, double ratio) {
    const QPointF topLeft = QPointF(rect.topLeft()) * ratio;
    const QPointF end = QPointF(rect.topLeft() + QPoint(rect.width(), rect.height())) * ratio;
    return {QPoint(static_cast<int>(std::floor(topLeft.x())), static_cast<int>(std::floor(topLeft.y()))),
            QPoint(static_cast<int>(std::ceil(end.x())) - 1, static_cast<int>(std::ceil(end.y())) - 1)};
}

/// A region as few rectangles: a single one unless that is much larger. Each rectangle costs a look at all
/// paths, which takes longer than to paint some pixels more.
QRegion FewRects(const QRegion& region) {
    const auto area = [](const QRect& rect) { return qint64{rect.width()} * rect.height(); };
    qint64 whole = 0;
    for (const QRect& rect : region)
        whole += area(rect);
    const QRect round = region.boundingRect();
    return area(round) <= 2 * whole ? QRegion(round) : region;
}

} // namespace

QMaskWidget::QMaskWidget(QWidget* parent)
    : QLabel(parent),
      mainWindow(parent != nullptr ? dynamic_cast<RulerOwner*>(parent->parentWidget()) : nullptr) {
    setAttribute(Qt::WA_MouseTracking);
    setScaledContents(true);
}

QMaskWidget::~QMaskWidget() = default;

void QMaskWidget::clearAll() {
    resetPaths();
    update();
}

void QMaskWidget::resetPaths() {
    editor.Reset();
    AllChanged();
}

void QMaskWidget::deleteLast() {
    if (paths().empty())
        return;
    editor.DeleteLast();
    marks.PathsRemoved(paths().size());
    extents.AllChanged();
    update();
}

bool QMaskWidget::segmentExists(int path, int segment) const {
    return editor.SegmentExists(path, segment);
}

void QMaskWidget::clearRulerMarks() {
    for (TrackPath& path : editor.PathsForMarks())
        path.rulerMarks.clear();
    AllChanged();
    update();
}

void QMaskWidget::computeRulerMarks(int imageWidth, int imageHeight) {
    Extent changed;
    marks.Update(editor.PathsForMarks(), QSize(imageWidth, imageHeight),
                 [&](std::size_t path, const RulerMarks& touched) {
                     changed.Add(touched);
                     extents.PathChanged(path);
                 });
    if (RulerShown() != bandsPainted)
        update(); // marks that were computed while the ruler was hidden are seen only now
    else if (!changed.IsEmpty())
        update(PlaceOf(changed));
}

int QMaskWidget::loadPaths(const QString& fileName) {
    const std::string file = fileName.toStdString();
    std::vector<TrackPath> read;
    const int status = CreateConverter(file)->ReadPath(file, read);
    if (status == 0)
        openedTrack = file;
    editor.TakePaths(std::move(read));
    AllChanged();
    update();
    return status;
}

void QMaskWidget::SavePath(const QString& original, const QString& target, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) {
    const WorldTransform world{widthScale, xOffset, yOffset, xScale, yScale};
    const std::string file = original.toStdString();
    switch (SaveWithPaths(file, target.toStdString(), paths(), world, file == openedTrack)) {
    case SaveResult::Saved:
        return;
    case SaveResult::OriginalUnreadable:
        ThrowTrackError(__LINE__, "Failed to read the original file.");
    case SaveResult::TargetUnwritable:
        ThrowTrackError(__LINE__, "Failed to read the target file.");
    }
}

const std::vector<TrackPath>& QMaskWidget::paths() const {
    return editor.State().paths;
}

int QMaskWidget::currentPath() const {
    return editor.State().currentPath;
}

int QMaskWidget::currentSegment() const {
    return editor.State().currentSegment;
}

void QMaskWidget::setCurrentPath(int path) {
    editor.SetCurrentPath(path);
    update();
}

void QMaskWidget::setCurrentSegment(int segment) {
    editor.SetCurrentSegment(segment);
    update();
}

int QMaskWidget::segmentParameter(SegmentParameter parameter) const {
    return editor.Parameter(parameter);
}

void QMaskWidget::setSegmentParameter(SegmentParameter parameter, int value) {
    if (editor.SetParameter(parameter, value))
        marks.SegmentChanged(static_cast<std::size_t>(currentPath()),
                             static_cast<std::size_t>(currentSegment()));
}

void QMaskWidget::setParameterEverywhere(SegmentParameter parameter, int value) {
    editor.SetParameterEverywhere(parameter, value);
    marks.AllChanged();
}

void QMaskWidget::mousePressEvent(QMouseEvent* event) {
    if (!HasImage() || event->button() != Qt::LeftButton)
        return;
    const std::size_t before = paths().size();
    editor.Press(Scale(), event->localPos());
    if (paths().size() > before)
        PointChanged(static_cast<int>(before), 0);
}

void QMaskWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (!HasImage() || event->button() != Qt::LeftButton)
        return;
    const bool drags = !editor.State().dragPoint.isNull();
    const int path = drags ? editor.State().hoverPath : static_cast<int>(paths().size()) - 1;
    update(PlaceOfCursor());
    if (drags)
        update(PlaceOfPoint(path, editor.State().hoverPoint));
    const bool added = editor.Release(Scale(), event->localPos());
    if (added)
        PointChanged(path, static_cast<int>(paths().back().points.size()) - 1);
    else if (drags)
        PointChanged(path, editor.State().hoverPoint);
    if (added)
        RefreshRulerIfShown();
    update(PlaceOfCursor());
}

void QMaskWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (HasImage() && event->button() == Qt::LeftButton)
        editor.DoubleClick();
}

void QMaskWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!HasImage())
        return;
    update(PlaceOfCursor());
    if (!(event->buttons() & Qt::LeftButton)) {
        editor.Hover(Scale(), event->localPos());
    } else {
        const int path = editor.State().hoverPath;
        const int point = editor.State().hoverPoint;
        const QRect before = PlaceOfPoint(path, point);
        if (editor.Drag(Scale(), event->localPos())) {
            update(before);
            PointChanged(path, point);
            RefreshRulerIfShown();
        }
    }
    update(PlaceOfCursor());
}

void QMaskWidget::paintEvent(QPaintEvent* event) {
    const QPixmap image = Image();
    if (image.isNull()) {
        view.Clear();
        coarse = {};
        refining.stop();
        return;
    }
    QPainter painter(this);
    const double ratio = painter.deviceTransform().m11(); // nothing but the device's pixel ratio scales here
    const QRect canvas = DeviceRect(rect(), ratio);
    bandsPainted = RulerShown();
    painter.scale(1.0 / ratio, 1.0 / ratio); // from here on in device pixels, so that none is resampled
    view.Show(image, canvas.size(), DeviceRect(visibleRegion().boundingRect(), ratio).intersected(canvas));
    for (const QRect& exposed : event->region()) // what is painted beside it does not reach the screen
        coarse -= DeviceRect(exposed, ratio);
    for (const QRect& exposed : FewRects(event->region())) {
        const QRect place = DeviceRect(exposed, ratio).intersected(canvas);
        const int rows = std::max(1, kMostPainted / std::max(1, place.width()));
        for (int top = place.top(); top <= place.bottom(); top += rows)
            PaintPart(painter, QRect(place.left(), top, place.width(), rows).intersected(place), ratio);
    }
    view.ReleaseImage();
    if (coarse.isEmpty())
        refining.stop();
    else if (!refining.isActive())
        refining.start(0, this);
}

void QMaskWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() != refining.timerId())
        return QLabel::timerEvent(event);
    const QRect place = coarse.isEmpty() ? QRect() : view.UpperRows(*coarse.begin());
    coarse -= place;
    if (coarse.isEmpty())
        refining.stop();
    const double ratio = devicePixelRatioF();
    repaint(DeviceRect(place, 1.0 / ratio));
}

void QMaskWidget::PaintPart(QPainter& painter, const QRect& place, double ratio) {
    // The same memory for every part: to have new memory cleared by the system takes longer than to paint.
    strip.resize(std::max(strip.size(), static_cast<std::size_t>(place.width()) * place.height()));
    QImage part(reinterpret_cast<uchar*>(strip.data()), place.width(), place.height(),
                place.width() * static_cast<int>(sizeof(QRgb)), QImage::Format_RGB32);
    coarse += view.Copy(place, part);
    if (!isEnabled())
        PaintDisabled(part);
    PathPainter(part, place, ratio, editor.State(), extents, lineShapes, Scale()).Paint(RulerShown(), font());
    part.setDevicePixelRatio(1.0);
    painter.drawImage(place.topLeft(), part);
}

void QMaskWidget::PaintDisabled(QImage& part) const {
    QStyleOption option;
    option.initFrom(this);
    part = style()
               ->generatedIconPixmap(QIcon::Disabled, QPixmap::fromImage(part), &option)
               .toImage()
               .convertToFormat(QImage::Format_RGB32);
}

QRect QMaskWidget::PlaceOfPoint(int path, int point) const {
    if (path < 0 || path >= static_cast<int>(paths().size()))
        return {};
    const auto& points = paths()[static_cast<std::size_t>(path)].points;
    Extent extent;
    for (int index = std::max(0, point - 1); index <= point + 1 && index < static_cast<int>(points.size());
         ++index)
        extent.Add(points[static_cast<std::size_t>(index)]);
    return PlaceOf(extent);
}

QRegion QMaskWidget::PlaceOfCursor() const {
    const EditingState& state = editor.State();
    QRegion place;
    if (!state.rubberPoint.isNull() && !state.paths.empty() && !state.paths.back().points.empty()) {
        Extent band;
        band.Add(state.paths.back().points.back());
        band.Add(state.rubberPoint);
        place += PlaceOf(band);
    }
    if (!state.dragPoint.isNull()) {
        Extent grip;
        grip.Add(state.dragPoint);
        const PointLabel label(Scale().toWidgetPixels(state.dragPoint), width());
        const QRect text = fontMetrics().boundingRect(label.text).translated(label.start);
        place += PlaceOf(grip).united(text.adjusted(-PathPainter::kReach, -PathPainter::kReach,
                                                    PathPainter::kReach, PathPainter::kReach));
    }
    return place;
}

QRect QMaskWidget::PlaceOf(const Extent& extent) const {
    if (extent.IsEmpty())
        return {};
    const int reach = PathPainter::kReach;
    return QRect(Scale().toWidgetPixels(extent.TopLeft()), Scale().toWidgetPixels(extent.BottomRight()))
        .adjusted(-reach, -reach, reach, reach);
}

void QMaskWidget::PointChanged(int path, int point) {
    marks.PointChanged(static_cast<std::size_t>(path), static_cast<std::size_t>(point));
    extents.PathChanged(static_cast<std::size_t>(path));
    update(PlaceOfPoint(path, point));
}

void QMaskWidget::AllChanged() {
    marks.AllChanged();
    extents.AllChanged();
}

QPixmap QMaskWidget::Image() const {
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    return pixmap(Qt::ReturnByValue);
#else
    return pixmap() != nullptr ? *pixmap() : QPixmap();
#endif
}

bool QMaskWidget::RulerShown() const {
    return mainWindow != nullptr && mainWindow->rulerShown();
}

void QMaskWidget::RefreshRulerIfShown() {
    if (RulerShown())
        mainWindow->refreshRuler();
}
