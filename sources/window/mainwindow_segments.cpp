#include "window/mainwindow.h"

#include "document/ImageProportions.h"
#include "ui_mainwindow.h"

#include <QScopedValueRollback>

#include <algorithm>

namespace {

constexpr int kPercentPerStep = 5;
constexpr double kScalePerStep = 0.05;
constexpr int kFirst = 1; ///< Tracks and segments are numbered from 1.

} // namespace

void MainWindow::on_horizontalSlider_resizeImage_valueChanged(int value) {
    ui->label_scale->setText(QStringLiteral("Scale:%1%").arg(value * kPercentPerStep));
    if (!heightMap.isNull())
        ui->label_mask->resize(
            ShownImageSize(heightMap.size(), info.xResolution, info.yResolution, value * kScalePerStep));
}

void MainWindow::on_pushButton_deleteLast_clicked() {
    if (heightMap.isNull())
        return;
    ui->label_mask->deleteLast();
    if (showsRuler)
        refreshRuler();
}

void MainWindow::on_pushButton_deleteAll_clicked() {
    if (heightMap.isNull())
        return;
    resetSegmentControls();
    ui->label_mask->clearAll();
}

void MainWindow::on_pushButton_getRuler_clicked() {
    showsRuler = !showsRuler;
    ui->pushButton_getRuler->setText(showsRuler ? tr("Hide Ruler") : tr("Show Ruler"));
    if (showsRuler)
        refreshRuler();
    else
        ui->label_mask->clearRulerMarks();
}

void MainWindow::on_checkBox_batchSetting_clicked(bool checked) {
    ui->label_path->setDisabled(checked);
    ui->spinBox_pathId->setDisabled(checked);
    ui->label_segment->setDisabled(checked);
    ui->spinBox_segmentId->setDisabled(checked);
}

// Setting a spin box to another number re-enters its slot; it is set straight to the last number there is, so
// that this happens once, however large the number typed.
void MainWindow::on_spinBox_pathId_valueChanged(int number) {
    if (number > PathCount()) {
        ui->spinBox_pathId->setValue(std::max(PathCount(), kFirst));
        return;
    }
    ui->label_mask->setCurrentPath(number - 1);
    ui->spinBox_segmentId->setValue(kFirst);
    on_spinBox_segmentId_valueChanged(kFirst);
}

void MainWindow::on_spinBox_segmentId_valueChanged(int number) {
    const int points = PointCount(ui->label_mask->currentPath());
    if (number >= points) {
        ui->spinBox_segmentId->setValue(std::max(points - 1, kFirst));
        return;
    }
    ui->label_mask->setCurrentSegment(number - 1);
    if (ui->label_mask->segmentExists(ui->label_mask->currentPath(), number - 1))
        ShowSegment();
}

void MainWindow::on_comboBox_lineType_currentIndexChanged(int index) {
    SetParameter(SegmentParameter::Method, index + 1);
}

void MainWindow::on_lineEdit_lineLength_textChanged(const QString& text) {
    SetParameterAndRefresh(SegmentParameter::Length, text);
}

void MainWindow::on_lineEdit_lineWidth_textChanged(const QString& text) {
    SetParameterAndRefresh(SegmentParameter::Width, text);
}

void MainWindow::on_lineEdit_lineSpace_textChanged(const QString& text) {
    SetParameterAndRefresh(SegmentParameter::Space, text);
}

void MainWindow::refreshRuler() {
    if (heightMap.isNull())
        return;
    const QSize size = ShownImageSize(heightMap.size(), info.xResolution, info.yResolution);
    ui->label_mask->computeRulerMarks(size.width(), size.height());
}

void MainWindow::resetSegmentControls() {
    const QScopedValueRollback<bool> showing(showingSegment, true);
    ui->spinBox_pathId->setValue(kFirst);
    ui->spinBox_segmentId->setValue(kFirst);
    ui->comboBox_lineType->setCurrentIndex(0);
    ui->lineEdit_lineLength->setText(QStringLiteral("100"));
    ui->lineEdit_lineWidth->setText(QStringLiteral("50"));
    ui->lineEdit_lineSpace->setText(QStringLiteral("100"));
}

// What a segment has is shown, not set: in batch mode, writing it back would give every segment the values of
// this one, and a method that the list does not offer would be lost.
void MainWindow::ShowSegment() {
    const QScopedValueRollback<bool> showing(showingSegment, true);
    const auto value = [this](SegmentParameter parameter) {
        return ui->label_mask->segmentParameter(parameter);
    };
    // A file may hold any number, the lowest included; below 1 is none of the list's.
    ui->comboBox_lineType->setCurrentIndex(std::max(value(SegmentParameter::Method), 0) - 1);
    ui->lineEdit_lineLength->setText(QString::number(value(SegmentParameter::Length)));
    ui->lineEdit_lineWidth->setText(QString::number(value(SegmentParameter::Width)));
    ui->lineEdit_lineSpace->setText(QString::number(value(SegmentParameter::Space)));
}

void MainWindow::SetParameter(SegmentParameter parameter, int value) {
    if (showingSegment)
        return;
    if (ui->checkBox_batchSetting->isChecked())
        ui->label_mask->setParameterEverywhere(parameter, value);
    else
        ui->label_mask->setSegmentParameter(parameter, value);
}

/// A text that is no number counts as 0.
void MainWindow::SetParameterAndRefresh(SegmentParameter parameter, const QString& text) {
    SetParameter(parameter, text.toInt());
    if (showsRuler && !showingSegment)
        refreshRuler();
}

int MainWindow::PathCount() const {
    return static_cast<int>(ui->label_mask->paths().size());
}

int MainWindow::PointCount(int path) const {
    if (path >= PathCount())
        return 0;
    return static_cast<int>(ui->label_mask->paths()[static_cast<std::size_t>(path)].points.size());
}
