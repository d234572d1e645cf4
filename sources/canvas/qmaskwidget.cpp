#include "qmaskwidget.h"

#include "RulerOwner.h"

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
    state = {};
}
void QMaskWidget::deleteLast() {
}
bool QMaskWidget::segmentExists(int path, int segment) const {
    const auto count = static_cast<int>(state.paths.size());
    return path < count &&
           segment < static_cast<int>(state.paths[static_cast<std::size_t>(path)].points.size()) - 1;
}
void QMaskWidget::clearRulerMarks() {
}
void QMaskWidget::computeRulerMarks(int, int) {
}
int QMaskWidget::loadPaths(const QString&) {
    return 1;
}
void QMaskWidget::SavePath(const QString&, const QString&, double, double, double, double, double) {
}
const std::vector<TrackPath>& QMaskWidget::paths() const {
    return state.paths;
}
int QMaskWidget::currentPath() const {
    return state.currentPath;
}
int QMaskWidget::currentSegment() const {
    return state.currentSegment;
}
void QMaskWidget::setCurrentPath(int path) {
    state.currentPath = path;
    update();
}
void QMaskWidget::setCurrentSegment(int segment) {
    state.currentSegment = segment;
    update();
}
int QMaskWidget::segmentParameter(SegmentParameter) const {
    return mainWindow == nullptr ? 0 : 1;
}
void QMaskWidget::setSegmentParameter(SegmentParameter, int) {
}
void QMaskWidget::setParameterEverywhere(SegmentParameter, int) {
}
void QMaskWidget::mousePressEvent(QMouseEvent*) {
}
void QMaskWidget::mouseReleaseEvent(QMouseEvent*) {
}
void QMaskWidget::mouseDoubleClickEvent(QMouseEvent*) {
}
void QMaskWidget::mouseMoveEvent(QMouseEvent*) {
}
void QMaskWidget::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
}
