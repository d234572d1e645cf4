#include "canvas/qmaskwidget.h"

#include "canvas/AccessibleCanvas.h"
#include "canvas/PathPainter.h"

#include <QBackingStore>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Pixels of one strip: a larger area is painted in strips that stay in the processor's cache.
constexpr int kMaxPainted = 1024 * 1024 / 4;

/// All device pixels that a rectangle of widget pixels touches.
QRect DeviceRect(const QRect& rect, double ratio) {
    const QPointF topLeft = QPointF(rect.topLeft()) * ratio;
    const QPointF end = QPointF(rect.topLeft() + QPoint(rect.width(), rect.height())) * ratio;
    return {QPoint(static_cast<int>(std::floor(topLeft.x())), static_cast<int>(std::floor(topLeft.y()))),
            QPoint(static_cast<int>(std::ceil(end.x())) - 1, static_cast<int>(std::ceil(end.y())) - 1)};
}

/// A region as few rectangles: a single one unless that is much larger. Each rectangle is checked against all
/// paths, which takes longer than painting some more pixels.
QRegion FewRects(const QRegion& region) {
    const auto area = [](const QRect& rect) { return qint64{rect.width()} * rect.height(); };
    qint64 whole = 0;
    for (const QRect& rect : region)
        whole += area(rect);
    const QRect round = region.boundingRect();
    return area(round) <= 2 * whole ? QRegion(round) : region;
}

/// Whether the widget is rendered into a picture, as by grab(), not painted on the screen.
bool IsGrabbed(const QPainter& painter, const QWidget& widget) {
    QBackingStore* const screen = widget.window()->backingStore();
    return screen == nullptr || painter.paintEngine()->paintDevice() != screen->paintDevice();
}

} // namespace

QMaskWidget::QMaskWidget(QWidget* parent)
    : QLabel(parent),
      mainWindow(parent != nullptr ? dynamic_cast<RulerOwner*>(parent->parentWidget()) : nullptr),
      ownDocument(std::make_unique<TrackDocument>()),
      doc(ownDocument.get()),
      editor(*doc) {
    setAttribute(Qt::WA_MouseTracking);
    setScaledContents(true);
    setFocusPolicy(Qt::ClickFocus);
    AccessibleCanvas::Install();
    setDocument(*doc);
}

QMaskWidget::~QMaskWidget() = default;

void QMaskWidget::setDocument(TrackDocument& other) {
    doc->disconnect(this);
    doc = &other;
    if (doc != ownDocument.get())
        ownDocument.reset();
    editor = PathEditor(*doc);
    connect(doc, &TrackDocument::pathsChanged, this, &QMaskWidget::FollowPaths);
    connect(doc, &TrackDocument::rulerMarksChanged, this, &QMaskWidget::FollowRulerMarks);
    connect(doc, &TrackDocument::imageChanged, this, [this] { editor.Reset(); });
    connect(doc, &TrackDocument::restored, this, &QMaskWidget::FollowRestored);
    FollowPaths(AllPathsReplaced{});
}

void QMaskWidget::clearAll() {
    editor.Reset();
    doc->deleteAll();
    update();
}

void QMaskWidget::resetPaths() {
    const QScopedValueRollback<bool> quietly(repaintsReplacedPaths, false);
    editor.Reset();
    doc->resetPaths();
}

void QMaskWidget::deleteLast() {
    if (paths().empty())
        return;
    editor.ForgetCursor();
    doc->deleteLast();
    update();
}

bool QMaskWidget::segmentExists(int path, int segment) const {
    return doc->segmentExists(path, segment);
}

void QMaskWidget::clearRulerMarks() {
    doc->clearRulerMarks();
    update();
}

void QMaskWidget::computeRulerMarks(int imageWidth, int imageHeight) {
    doc->computeRulerMarks(QSize(imageWidth, imageHeight));
}

int QMaskWidget::loadPaths(const QString& fileName) {
    return doc->loadPaths(fileName.toStdString());
}

void QMaskWidget::SavePath(const QString& original, const QString& target, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) {
    doc->save(original.toStdString(), target.toStdString(), {widthScale, xOffset, yOffset, xScale, yScale});
}

const std::vector<TrackPath>& QMaskWidget::paths() const {
    return doc->paths();
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
    return doc->parameter({currentPath(), currentSegment()}, parameter);
}

void QMaskWidget::setSegmentParameter(SegmentParameter parameter, int value) {
    doc->setParameter({currentPath(), currentSegment()}, parameter, value);
}

void QMaskWidget::setParameterEverywhere(SegmentParameter parameter, int value) {
    doc->setParameterEverywhere(parameter, value);
}

void QMaskWidget::mousePressEvent(QMouseEvent* event) {
    if (!HasImage() || event->button() != Qt::LeftButton)
        return;
    pressed = true;
    cursorAt = event->localPos();
    doc->endGesture();
    if (editor.IsHoverByKey())
        update(PlaceOfCursor()); // the press may find another point under the cursor
    if ((event->modifiers() & Qt::ControlModifier) == 0 || !SplitByMouse())
        editor.Press(Scale(), *cursorAt);
    emit cursorChanged();
}

bool QMaskWidget::SplitByMouse() {
    update(PlaceOfCursor());
    if (!editor.PressOnSegment(Scale(), *cursorAt))
        return false;
    RefreshRulerIfShown();
    update(PlaceOfCursor());
    emit segmentsShifted();
    return true;
}

void QMaskWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        pressed = false;
    if (!HasImage() || event->button() != Qt::LeftButton)
        return;
    update(PlaceOfCursor());
    if (editor.Release(Scale(), event->localPos()))
        RefreshRulerIfShown();
    update(PlaceOfCursor());
    emit cursorChanged();
}

void QMaskWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (HasImage() && event->button() == Qt::LeftButton)
        editor.DoubleClick();
}

void QMaskWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!HasImage())
        return;
    update(PlaceOfCursor());
    cursorAt = event->localPos();
    pressed = (event->buttons() & Qt::LeftButton) != 0; // a release may have gone to another window
    if (!pressed) {
        editor.Hover(Scale(), *cursorAt);
    } else if (editor.Drag(Scale(), *cursorAt)) {
        RefreshRulerIfShown();
    }
    update(PlaceOfCursor());
    emit cursorChanged();
}

void QMaskWidget::leaveEvent(QEvent* event) {
    cursorAt.reset();
    QLabel::leaveEvent(event);
    emit cursorChanged();
}

void QMaskWidget::moveEvent(QMoveEvent* event) {
    QLabel::moveEvent(event);
    if (cursorAt)
        *cursorAt -= event->pos() - event->oldPos(); // it stays where it is on the screen
    FollowGeometry();
}

void QMaskWidget::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    FollowGeometry();
}

/// After scrolling or scaling another point may be under the cursor: a press must not drag the previous one.
void QMaskWidget::FollowGeometry() {
    if (cursorAt && !pressed && !editor.IsHoverByKey() && HasImage()) {
        update(PlaceOfCursor());
        editor.Hover(Scale(), *cursorAt);
        update(PlaceOfCursor());
    }
    emit cursorChanged();
}

bool QMaskWidget::EditByKey(const std::function<bool()>& edit) {
    if (!HasImage() || pressed)
        return false;
    update(PlaceOfCursor());
    const bool edited = edit();
    if (edited)
        RefreshRulerIfShown();
    update(PlaceOfCursor());
    emit cursorChanged();
    return edited;
}

std::optional<QPoint> QMaskWidget::touchedPlace() const {
    const auto at = editor.TouchedPoint();
    if (!at)
        return std::nullopt;
    return Scale().toWidgetPixels(
        paths()[static_cast<std::size_t>(at->path)].points[static_cast<std::size_t>(at->point)]);
}

bool QMaskWidget::isPointChosenByKey() const {
    return editor.IsHoverByKey() && !editor.State().dragPoint.isNull();
}

bool QMaskWidget::nudgePoint(const QPoint& tenths) {
    return EditByKey([&] { return editor.MoveTouched(Scale(), tenths, Image().size()); });
}

bool QMaskWidget::removePoint() {
    const bool removed = EditByKey([&] { return editor.RemoveTouched(); });
    if (removed)
        emit segmentsShifted();
    return removed;
}

bool QMaskWidget::addPoint(const QPointF& place) {
    return EditByKey([&] { return editor.AddPoint(Scale(), place); });
}

bool QMaskWidget::splitSegment() {
    const bool split = EditByKey([&] { return editor.SplitSegment(Scale(), cursorAt); });
    if (split)
        emit segmentsShifted();
    return split;
}

bool QMaskWidget::choosePoint(int delta) {
    return EditByKey([&] { return editor.ChoosePoint(delta); });
}

void QMaskWidget::closePaths() {
    EditByKey([&] {
        doc->closeAllPaths();
        return false; // which is not visible
    });
}

void QMaskWidget::giveUp() {
    update(PlaceOfCursor());
    if (!pressed)
        editor.LetGo();
    else if (editor.GiveUpGesture())
        RefreshRulerIfShown();
    update(PlaceOfCursor());
    emit cursorChanged();
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
    const double ratio = painter.deviceTransform().m11(); // only the device's pixel ratio scales here
    const QRect canvas = DeviceRect(rect(), ratio);
    bandsPainted = RulerShown();
    painter.scale(1.0 / ratio, 1.0 / ratio); // from here on in device pixels, so that nothing is resampled
    const bool grabbed = IsGrabbed(painter, *this);
    view.Show(image, canvas.size(), DeviceRect(visibleRegion().boundingRect(), ratio).intersected(canvas),
              grabbed ? std::numeric_limits<double>::max() : HeightMapView::kMaxRead);
    if (!grabbed)
        for (const QRect& exposed : event->region()) // painting outside it does not reach the screen
            coarse -= DeviceRect(exposed, ratio);
    for (const QRect& exposed : FewRects(event->region())) {
        const QRect place = DeviceRect(exposed, ratio).intersected(canvas);
        const int rows = std::max(1, kMaxPainted / std::max(1, place.width()));
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
    // The memory is reused for every part: clearing new memory takes the system longer than painting.
    strip.resize(std::max(strip.size(), static_cast<std::size_t>(place.width()) * place.height()));
    QImage part(reinterpret_cast<uchar*>(strip.data()), place.width(), place.height(),
                place.width() * static_cast<int>(sizeof(QRgb)), QImage::Format_RGB32);
    coarse += view.Copy(place, part);
    if (!isEnabled())
        PaintDisabled(part);
    PathPainter(part, place, ratio, paths(), editor.State(), extents, shapes, Scale())
        .Paint(RulerShown(), font());
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

Extent QMaskWidget::ExtentOfPoint(PointIndex at) const {
    Extent extent;
    for (PointIndex near{at.path, at.point - 1}; near.point <= at.point + 1; ++near.point)
        if (doc->hasPoint(near))
            extent.Add(
                paths()[static_cast<std::size_t>(near.path)].points[static_cast<std::size_t>(near.point)]);
    return extent;
}

QRect QMaskWidget::PlaceOfPoint(PointIndex at) const {
    return PlaceOf(ExtentOfPoint(at));
}

QRegion QMaskWidget::PlaceOfCursor() const {
    const EditingState& state = editor.State();
    QRegion place;
    if (!state.rubberPoint.isNull() && !paths().empty() && !paths().back().points.empty()) {
        Extent band;
        band.Add(paths().back().points.back());
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

/// Repaints what a change concerns. A parameter is visible only in the ruler marks; closing a path changes
/// nothing visible.
void QMaskWidget::FollowPaths(const PathsChange& change) {
    extents.Follow(change);
    editor.Follow(change);
    const ChangeHandlers handlers{
        [this](const PathInserted& inserted) {
            const auto index = static_cast<std::size_t>(inserted.path);
            update(PlaceOf(extents.Of(paths(), index).points));
        },
        [this](const PathRemoved&) { update(); },
        [this](const PointInserted& inserted) { update(PlaceOfPoint(inserted.at)); },
        [this](const PointRemoved&) { update(); },
        [this](const PointMoved& moved) {
            Extent extent = ExtentOfPoint(moved.at);
            extent.Add(moved.before);
            update(PlaceOf(extent));
        },
        [](const ParameterSet&) {},
        [](const ParameterSetEverywhere&) {},
        [](const FinishedCountSet&) {},
        [this](const AllPathsReplaced&) {
            if (repaintsReplacedPaths)
                update();
        },
    };
    std::visit(handlers, change);
}

void QMaskWidget::FollowRulerMarks(const RulerMarksChange& change) {
    extents.Follow(change);
    if (RulerShown() != bandsPainted)
        update(); // marks computed while the ruler was hidden become visible now
    else if (!change.extent.IsEmpty())
        update(PlaceOf(change.extent));
}

void QMaskWidget::FollowRestored() {
    update(PlaceOfCursor());
    editor.ForgetCursor();
    RefreshRulerIfShown();
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
