#include "window/SegmentPanel.h"

#include "ui_mainwindow.h"
#include "window/mainwindow.h"

#include <QIntValidator>
#include <QScopedValueRollback>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int kMaxNumber = 10000;
constexpr int kMinLength = 2;
constexpr int kFirst = 1;

/// Integers in the C locale, whatever the desktop's: the same text means the same number everywhere.
QIntValidator* Integers(int lowest, int highest, QObject* parent) {
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    auto* validator = new QIntValidator(lowest, highest, parent);
    validator->setLocale(plain);
    return validator;
}

} // namespace

void RulerControl::toggle() {
    shown = !shown;
    button.setText(shown ? MainWindow::tr("Hide Ruler") : MainWindow::tr("Show Ruler"));
    if (shown)
        refresh();
    else
        canvas.clearRulerMarks();
}

void RulerControl::refresh() {
    if (!canvas.document().hasImage())
        return;
    const QSize size = canvas.document().shownSize();
    canvas.computeRulerMarks(size.width(), size.height());
}

SegmentPanel::SegmentPanel(Ui::MainWindow& ui, QMaskWidget& canvas, RulerControl& ruler)
    : ui(ui), canvas(canvas), ruler(ruler) {
}

void SegmentPanel::setUp() {
    ui.spinBox_pathId->setRange(kFirst, kMaxNumber);
    ui.spinBox_segmentId->setRange(kFirst, kMaxNumber);
    ui.comboBox_lineType->addItem(MainWindow::tr("Method 1 - Isolated track"));
    ui.comboBox_lineType->hide();
    ui.label_method->hide();
    ui.lineEdit_lineLength->setValidator(Integers(kMinLength, kMaxNumber, this));
    ui.lineEdit_lineWidth->setValidator(Integers(0, kMaxNumber, this));
    ui.lineEdit_lineSpace->setValidator(Integers(0, kMaxNumber, this));
    for (const QLineEdit* const field :
         {ui.lineEdit_lineLength, ui.lineEdit_lineWidth, ui.lineEdit_lineSpace})
        connect(field, &QLineEdit::editingFinished, this, [this] { canvas.document().endGesture(); });
}

void SegmentPanel::followPaths() {
    const QSignalBlocker quietPath(ui.spinBox_pathId);
    const QSignalBlocker quietSegment(ui.spinBox_segmentId);
    ui.spinBox_pathId->setValue(std::min(ui.spinBox_pathId->value(), std::max(pathCount(), kFirst)));
    if (const int path = ui.spinBox_pathId->value() - 1; path != canvas.currentPath())
        canvas.setCurrentPath(path);
    const int lastSegment = std::max(pointCount(canvas.currentPath()) - 1, kFirst);
    ui.spinBox_segmentId->setValue(std::min(ui.spinBox_segmentId->value(), lastSegment));
    if (const int segment = ui.spinBox_segmentId->value() - 1; segment != canvas.currentSegment())
        canvas.setCurrentSegment(segment);
    if (canvas.segmentExists(canvas.currentPath(), canvas.currentSegment()))
        showSegment();
}

void SegmentPanel::reset() {
    const QScopedValueRollback<bool> filling(showing, true);
    ui.spinBox_pathId->setValue(kFirst);
    ui.spinBox_segmentId->setValue(kFirst);
    ui.comboBox_lineType->setCurrentIndex(0);
    ui.lineEdit_lineLength->setText(QStringLiteral("100"));
    ui.lineEdit_lineWidth->setText(QStringLiteral("50"));
    ui.lineEdit_lineSpace->setText(QStringLiteral("100"));
}

void SegmentPanel::deleteLast() {
    if (!canvas.document().hasImage())
        return;
    canvas.deleteLast();
    ruler.refreshIfShown();
}

void SegmentPanel::deleteAll() {
    if (!canvas.document().hasImage())
        return;
    reset();
    canvas.clearAll();
}

void SegmentPanel::setBatchMode(bool batch) {
    ui.label_path->setDisabled(batch);
    ui.spinBox_pathId->setDisabled(batch);
    ui.label_segment->setDisabled(batch);
    ui.spinBox_segmentId->setDisabled(batch);
}

// Setting a spin box to another number re-enters its slot; it is set directly to the last existing number, so
// that this happens once, however large the number typed.
void SegmentPanel::choosePath(int number) {
    if (number > pathCount()) {
        ui.spinBox_pathId->setValue(std::max(pathCount(), kFirst));
        return;
    }
    canvas.setCurrentPath(number - 1);
    ui.spinBox_segmentId->setValue(kFirst);
    chooseSegment(kFirst);
}

void SegmentPanel::chooseSegment(int number) {
    const int points = pointCount(canvas.currentPath());
    if (number >= points) {
        ui.spinBox_segmentId->setValue(std::max(points - 1, kFirst));
        return;
    }
    canvas.document().endGesture();
    canvas.setCurrentSegment(number - 1);
    if (canvas.segmentExists(canvas.currentPath(), number - 1))
        showSegment();
}

void SegmentPanel::chooseNeighbour(int delta) {
    if (ui.checkBox_batchSetting->isChecked())
        return;
    int path = canvas.currentPath();
    int segment = canvas.currentSegment() + delta;
    while (segment < 0 || !canvas.segmentExists(path, segment)) {
        path += delta;
        if (path < 0 || path >= pathCount())
            return;
        segment = delta > 0 ? 0 : pointCount(path) - 2;
    }
    ui.spinBox_pathId->setValue(path + 1);
    ui.spinBox_segmentId->setValue(segment + 1);
}

// The segment's parameters are shown, not set: in batch mode, writing them back would give every segment
// these values, and a method that the list does not offer would be lost.
void SegmentPanel::showSegment() {
    const QScopedValueRollback<bool> filling(showing, true);
    const auto value = [this](SegmentParameter parameter) { return canvas.segmentParameter(parameter); };
    // A file may hold any number, even INT_MIN; numbers below 1 are not in the list.
    ui.comboBox_lineType->setCurrentIndex(std::max(value(SegmentParameter::Method), 0) - 1);
    ui.lineEdit_lineLength->setText(QString::number(value(SegmentParameter::Length)));
    ui.lineEdit_lineWidth->setText(QString::number(value(SegmentParameter::Width)));
    ui.lineEdit_lineSpace->setText(QString::number(value(SegmentParameter::Space)));
}

void SegmentPanel::set(SegmentParameter parameter, int value) {
    if (showing)
        return;
    if (ui.checkBox_batchSetting->isChecked())
        canvas.setParameterEverywhere(parameter, value);
    else
        canvas.setSegmentParameter(parameter, value);
}

void SegmentPanel::setFromText(SegmentParameter parameter, const QString& text) {
    set(parameter, text.toInt());
    if (!showing)
        ruler.refreshIfShown();
}

int SegmentPanel::pathCount() const {
    return static_cast<int>(canvas.paths().size());
}

int SegmentPanel::pointCount(int path) const {
    if (path >= pathCount())
        return 0;
    return static_cast<int>(canvas.paths()[static_cast<std::size_t>(path)].points.size());
}
