#include "window/mainwindow.h"

#include "basalt/Exception.h"
#include "basalt/FileReplacement.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "document/formats/Converter.h"
#include "ui_mainwindow.h"
#include "window/TrackFolder.h"
#include "window/WaitCursor.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QScopeGuard>
#include <QStandardItemModel>

#include <algorithm>
#include <cmath>

namespace {

// Where failures are reported from. These figures are known to those who read reports, and stay when the code
// around them moves.
constexpr const char* kSourceFile = "mainwindow";
constexpr int kInfoFailureLine = 489;
constexpr int kHeightMapFailureLine = 495;
constexpr int kPathFailureLine = 513;
constexpr int kDeleteFailureLine = 758;

constexpr int kDeleteItem = 4;

// Every height of a track is between these two; reading its information narrows them down.
constexpr double kLowestStart = 32768.0;
constexpr double kHighestStart = -32768.0;

constexpr int kSliderStepsAtFullSize = 20;

const QString kTemporaryTrack = QStringLiteral("temp.trk");

Ve::Exception LoadFailure(int line, const char* message) {
    return {line, kSourceFile, bERROR_TRACK, "MainWindow::LoadTrack", "%s", message};
}

/// A tool tip that shows the text as it stands, also one that looks like markup.
QString ToolTipText(const QString& text) {
    return text.isEmpty() ? text
                          : QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>");
}

/// How wide an open list must be for its items to be told apart.
int OpenListWidth(const QComboBox& box) {
    constexpr int kRoomBesideText = 40; // for the frame and a scroll bar
    constexpr int kWidest = 600;        // fits any screen; what is longer is cut in its middle
    int widest = 0;
    for (int index = 0; index < box.count(); ++index)
        widest = std::max(widest, box.view()->fontMetrics().horizontalAdvance(box.itemText(index)));
    return std::min(widest + kRoomBesideText, kWidest);
}

bool IsTemporaryTrack(const QString& path) {
    return QFileInfo(path).canonicalFilePath() == QFileInfo(kTemporaryTrack).canonicalFilePath();
}

} // namespace

void MainWindow::RefreshTrackList() {
    const bool open = SourceIsOpen();
    if (open) // before anything is cleared: it may fail
        trackFiles = ListFiles(kTrackFolder, QStringLiteral("*.trk"));
    ui->comboBox_file->clear();
    if (open)
        ui->comboBox_file->addItems(trackFiles);
    ui->comboBox_file->addItem(tr("External"));
    ui->comboBox_file->view()->setMinimumWidth(OpenListWidth(*ui->comboBox_file));
}

void MainWindow::on_comboBox_file_currentIndexChanged(const QString& text) {
    ui->comboBox_file->setToolTip(ToolTipText(text));
    const bool external = text == tr("External");
    auto* items = qobject_cast<QStandardItemModel*>(ui->comboBox_operation->model());
    items->item(kDeleteItem)
        ->setFlags(external ? Qt::ItemFlags(Qt::NoItemFlags) : Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

// The operation runs the moment it is chosen; the list then returns to "Normal", which comes here again and
// does nothing.
void MainWindow::on_comboBox_operation_currentIndexChanged(const QString& text) {
    if (text == tr("Normal"))
        return;
    bool finished = false;
    const auto run = [this, &text, &finished] { finished = RunOperation(text); };
    const auto giveUp = [this, &text] {
        if (text == tr("Load"))
            trackLoaded = false;
        ReturnToNormal();
    };
    RunSlot(run, giveUp);
    if (finished && ui->comboBox_operation->currentText() != tr("Normal"))
        ui->statusBar->showMessage(text + tr(" successfully."));
    ReturnToNormal();
}

void MainWindow::ReturnToNormal() {
    ui->comboBox_operation->setCurrentIndex(0);
}

bool MainWindow::RunOperation(const QString& operation) {
    if (operation == tr("Load"))
        return LoadChosenTrack();
    if (operation == tr("Save"))
        return SaveOpenTrack();
    if (operation == tr("Save As"))
        return SaveOpenTrackAs();
    if (operation == tr("Delete"))
        return DeleteChosenTrack();
    if (operation != tr("Refresh"))
        return false;
    RefreshTrackList();
    return true;
}

bool MainWindow::LoadChosenTrack() {
    const QString chosen = ui->comboBox_file->currentText();
    const bool external = chosen == tr("External");
    const QString path =
        external ? QFileDialog::getOpenFileName(this, tr("Please select a track file"), QStringLiteral("."),
                                                QStringLiteral("track (*.trk)"))
                 : WorkspaceTrack(chosen);
    if (path.isEmpty())
        return false;
    LoadTrack(path);
    trackLoaded = true;
    currentTrackPath = path.toStdString();
    externalTrack = external;
    const QString name = FileNameOf(path);
    ShowFileName(external ? tr("External - ") + name : name);
    return true;
}

void MainWindow::LoadTrack(const QString& path) {
    const WaitCursor waiting;
    const std::string file = path.toStdString();
    const std::shared_ptr<Converter> converter = CreateConverter(file);
    TrackInfo newInfo;
    newInfo.minHeight = kLowestStart;
    newInfo.maxHeight = kHighestStart;
    if (converter->ReadInfo(file, newInfo) != 0)
        throw LoadFailure(kInfoFailureLine, "Failed to read basic information.");
    ShowHeights(newInfo.minHeight, newInfo.maxHeight);
    QImage image;
    const int failure = converter->ReadImage(file, newInfo, newInfo.minHeight, newInfo.maxHeight, image);
    if (failure != 0 || image.isNull())
        throw LoadFailure(kHeightMapFailureLine, "Failed to read height map.");
    info = std::move(newInfo);
    heightMap = std::move(image);
    ui->label_mask->setPixmap(QPixmap::fromImage(heightMap));
    FitToView();
    LoadPaths(path);
}

void MainWindow::LoadPaths(const QString& path) {
    resetSegmentControls();
    ui->label_mask->resetPaths();
    if (ui->label_mask->loadPaths(path) != 0)
        throw LoadFailure(kPathFailureLine, "Failed to read path information.");
    if (showsRuler)
        refreshRuler();
    on_spinBox_pathId_valueChanged(1);
}

void MainWindow::ShowFileName(const QString& text) {
    ui->label_fileName->setText(text);
    ui->label_fileName->setToolTip(ToolTipText(text));
}

void MainWindow::ShowHeights(double lowest, double highest) {
    ui->lineEdit_heightMin->setText(QString::number(lowest));
    ui->lineEdit_heightMax->setText(QString::number(highest));
}

/// The value that fits is applied as it stands, also beyond the slider's end; below the slider's start, where
/// the canvas would have no area, the slider's own value counts.
void MainWindow::FitToView() {
    const double across = static_cast<double>(ui->scrollArea->width()) / heightMap.width();
    const double down = static_cast<double>(ui->scrollArea->height()) / heightMap.height();
    const int value = static_cast<int>(std::floor(std::min(across, down) * kSliderStepsAtFullSize));
    QSlider& slider = *ui->horizontalSlider_resizeImage;
    on_horizontalSlider_resizeImage_valueChanged(std::max(value, slider.minimum()));
    slider.setValue(value);
}

bool MainWindow::HasTrackToSave() {
    if (!trackLoaded) {
        ReturnToNormal();
        ShowError(tr("Please load a track file firstly."));
    }
    return trackLoaded;
}

bool MainWindow::SaveOpenTrack() {
    if (!HasTrackToSave())
        return false;
    refreshRuler();
    const QString path = QString::fromStdString(currentTrackPath);
    if (externalTrack)
        SaveExternalTrack(path);
    else
        SaveTrack(path, path);
    return true;
}

/// An external track joins the workspace; its own file is never written.
void MainWindow::SaveExternalTrack(const QString& path) {
    QString name = FileNameOf(path);
    if (trackFiles.contains(name))
        name = NewTrackName(name);
    const QString target = WorkspaceTrack(name);
    SaveTrack(path, target);
    currentTrackPath = target.toStdString();
    ShowFileName(name);
    externalTrack = false;
    RefreshTrackList();
}

/// The window keeps editing the file that it has open.
bool MainWindow::SaveOpenTrackAs() {
    if (!HasTrackToSave())
        return false;
    const QString target = QFileDialog::getSaveFileName(this, tr("Please input a name for track file"),
                                                        QStringLiteral("."), QStringLiteral("track (*.trk)"));
    if (!target.isEmpty()) {
        refreshRuler();
        SaveTrack(QString::fromStdString(currentTrackPath), target);
    }
    return true;
}

void MainWindow::SaveTrack(const QString& source, const QString& target) {
    const WaitCursor waiting;
    if (source == target && !IsTemporaryTrack(source))
        SaveInPlace(source);
    else
        WriteTrack(source, target);
}

/// By way of a temporary track; the old file goes only when that one is complete.
void MainWindow::SaveInPlace(const QString& track) {
    const auto cleanUp = [] { QFile::remove(kTemporaryTrack); };
    cleanUp();
    const auto atTheEnd = qScopeGuard(cleanUp);
    WriteTrack(track, kTemporaryTrack);
    if (ReplaceFile(kTemporaryTrack.toStdString(), track.toStdString()))
        throw Ve::Exception(__LINE__, kSourceFile, bERROR_TRACK, "MainWindow::SaveTrack",
                            "Failed to read the target file.");
}

void MainWindow::WriteTrack(const QString& source, const QString& target) {
    const double widthScale = std::min(info.xResolution, info.yResolution);
    ui->label_mask->SavePath(source, target, widthScale, info.xOffset, info.yOffset,
                             heightMap.width() * info.xResolution, heightMap.height() * info.yResolution);
}

bool MainWindow::DeleteChosenTrack() {
    const int chosen = ui->comboBox_file->currentIndex();
    const std::string path = WorkspaceTrack(trackFiles.value(chosen)).toStdString();
    const bStatus status = bFile_Delete(path.c_str());
    if (status != bOK)
        throw Ve::Exception(kDeleteFailureLine, kSourceFile, status,
                            "MainWindow::on_comboBox_operation_currentIndexChanged", "Failed to delete %s",
                            path.c_str());
    ui->comboBox_file->removeItem(chosen);
    trackFiles.removeAt(chosen);
    return true;
}
