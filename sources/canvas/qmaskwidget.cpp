#include "qmaskwidget.h"

#include "Converter.h"
#include "Exception.h"
#include "PathFiles.h"
#include "PathPainter.h"
#include "RulerMarksBuilder.h"
#include "RulerOwner.h"
#include "bStatus.h"

#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace {

[[noreturn]] void ThrowTrackError(int line, const char* message) {
    throw Ve::Exception(line, "qmaskwidget", bERROR_TRACK, "QMaskWidget::SavePath", "%s", message);
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
}

void QMaskWidget::deleteLast() {
    if (paths().empty())
        return;
    editor.DeleteLast();
    update();
}

bool QMaskWidget::segmentExists(int path, int segment) const {
    return editor.SegmentExists(path, segment);
}

void QMaskWidget::clearRulerMarks() {
    for (TrackPath& path : editor.PathsForMarks())
        path.rulerMarks.clear();
    update();
}

void QMaskWidget::computeRulerMarks(int imageWidth, int imageHeight) {
    const RulerMarksBuilder builder(QSize(imageWidth, imageHeight));
    for (TrackPath& path : editor.PathsForMarks())
        path.rulerMarks = builder.MarksOfPath(path);
    update();
}

int QMaskWidget::loadPaths(const QString& fileName) {
    const std::string file = fileName.toStdString();
    std::vector<TrackPath> read;
    const int status = CreateConverter(file)->ReadPath(file, read);
    editor.TakePaths(std::move(read));
    return status;
}

void QMaskWidget::SavePath(const QString& original, const QString& target, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) {
    const WorldTransform world{widthScale, xOffset, yOffset, xScale, yScale};
    switch (SaveWithPaths(original.toStdString(), target.toStdString(), paths(), world)) {
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
    editor.SetParameter(parameter, value);
}

void QMaskWidget::setParameterEverywhere(SegmentParameter parameter, int value) {
    editor.SetParameterEverywhere(parameter, value);
}

void QMaskWidget::mousePressEvent(QMouseEvent* event) {
    if (HasImage() && event->button() == Qt::LeftButton)
        editor.Press(Scale(), event->localPos());
}

void QMaskWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (!HasImage() || event->button() != Qt::LeftButton)
        return;
    if (editor.Release(Scale(), event->localPos()))
        RefreshRulerIfShown();
    update();
}

void QMaskWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (HasImage() && event->button() == Qt::LeftButton)
        editor.DoubleClick();
}

void QMaskWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!HasImage())
        return;
    if (!(event->buttons() & Qt::LeftButton))
        editor.Hover(Scale(), event->localPos());
    else if (editor.Drag(Scale(), event->localPos()))
        RefreshRulerIfShown();
    update();
}

void QMaskWidget::paintEvent(QPaintEvent* event) {
    if (!HasImage())
        return;
    QLabel::paintEvent(event);
    QPainter painter(this);
    PathPainter(painter, editor.State(), Scale()).Paint(RulerShown());
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
