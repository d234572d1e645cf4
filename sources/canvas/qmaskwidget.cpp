#include "qmaskwidget.h"

#include "RulerOwner.h"

QMaskWidget::QMaskWidget(QWidget* parent)
    : QLabel(parent),
      mainWindow(parent != nullptr ? dynamic_cast<RulerOwner*>(parent->parentWidget()) : nullptr) {
    setAttribute(Qt::WA_MouseTracking);
}

void QMaskWidget::clearAll() {
    resetPaths();
    update();
}
void QMaskWidget::resetPaths() {
}
void QMaskWidget::deleteLast() {
}
bool QMaskWidget::segmentExists(int, int) const {
    return mainWindow == nullptr;
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
