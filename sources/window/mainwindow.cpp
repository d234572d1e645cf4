#include "window/mainwindow.h"

#include "basalt/bStatus.h"
#include "link/BlockingController.h"
#include "log/Log.h"
#include "ui_mainwindow.h"
#include "window/CanvasKeys.h"
#include "window/ControlNames.h"
#include "window/InputGuard.h"
#include "window/ReadOuts.h"
#include "window/SegmentPanel.h"
#include "window/SourcePanel.h"
#include "window/StateLabel.h"
#include "window/TrackPanel.h"
#include "window/UndoActions.h"
#include "window/ViewNavigation.h"
#include "window/ViewScale.h"
#include "window/WaitingSpinnerWidget.h"
#include "workflow/KeptFolder.h"
#include "workflow/SourceWorkflow.h"
#include "workflow/TrackOperations.h"
#include "workflow/WorkProtection.h"

#include <QCloseEvent>

namespace {

constexpr int kSpinnerSize = 20; ///< pixels, of the ring's hole and of its bars

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), ui(std::make_unique<Ui::MainWindow>()) {
    ui->setupUi(this);
    LOG_LINE(INFO) << "Starting Corvane.";
    SetUpPanels();
    RunSlot([this] { sources->FillSourceList(); });
    ui->pushButton_sensor->setEnabled(ui->comboBox_sensor->count() > 0);
    sources->ShowChosenSource(sourcePanel->isBackupFileChosen());
    tracks->RefreshTrackList();
    SetUpCanvas();
    segments->setUp();
    segments->reset();
    trackPanel->showHeights(0.0, 0.0);
    SetUpWorker();
    SetUpAdditions();
}

MainWindow::~MainWindow() {
    worker->finish();
    sources->Leave();
}

void MainWindow::SetUpPanels() {
    ui->label_mask->setDocument(document);
    protection = std::make_unique<WorkProtection>(document, DefaultKeptFolder());
    stateLabel = new StateLabel(QString::fromStdString(protection->Folder()), this);
    ui->statusBar->addPermanentWidget(stateLabel);
    ruler = std::make_unique<RulerControl>(*ui->pushButton_getRuler, *ui->label_mask);
    scale = std::make_unique<ViewScale>(*ui->horizontalSlider_resizeImage, *ui->label_scale, *ui->scrollArea,
                                        *ui->label_mask, document);
    segments = std::make_unique<SegmentPanel>(*ui, *ui->label_mask, *ruler);
    trackPanel =
        std::make_unique<TrackPanel>(*ui, *this, document, TrackPanel::Neighbours{*scale, *segments, *ruler});
    sourcePanel = std::make_unique<SourcePanel>(*ui, *this);
    tracks = std::make_unique<TrackOperations>(
        TrackOperations::Context{document, *trackPanel, *protection, [this] { return sources->IsOpen(); }});
    sources =
        std::make_unique<SourceWorkflow>(SourceWorkflow::Context{client, *tracks, *sourcePanel, *protection});
}

void MainWindow::SetUpCanvas() {
    ui->label_mask->setScaledContents(true);
    ui->label_mask->setMouseTracking(true);
    ui->scrollArea->setWidgetResizable(false);
    ui->scrollArea->setWidget(ui->label_mask);
    ui->scrollAreaWidgetContents = nullptr; // the scroll area has deleted it
}

void MainWindow::SetUpWorker() {
    qRegisterMetaType<Ve::Exception>("Ve::Exception");
    worker = std::make_unique<WorkerThread>(client);
    spinner = new WaitingSpinnerWidget(Qt::WindowModal, this, true, true);
    spinner->setInnerRadius(kSpinnerSize);
    spinner->setLineLength(kSpinnerSize);
    spinner->setLineColor(palette().color(QPalette::WindowText)); // visible on a dark desktop too
    spinner->setAccessibleName(tr("Busy"));
    BlockingController* const controller = &worker->controller();
    connect(sourcePanel.get(), &SourcePanel::restoreRequested, this, &MainWindow::SignalRestore);
    connect(sourcePanel.get(), &SourcePanel::backupRequested, this, &MainWindow::SignalBackup);
    connect(this, &MainWindow::SignalRestore, controller, &BlockingController::SlotRestore);
    connect(this, &MainWindow::SignalBackup, controller, &BlockingController::SlotBackup);
    connect(controller, &BlockingController::SignalRestoreFinished, this, &MainWindow::SlotProcessRestore);
    connect(controller, &BlockingController::SignalBackupFinished, this, &MainWindow::SlotProcessBackup);
    connect(this, &MainWindow::SignalRestore, spinner, &WaitingSpinnerWidget::start);
    connect(this, &MainWindow::SignalBackup, spinner, &WaitingSpinnerWidget::start);
    connect(controller, &BlockingController::SignalRestoreFinished, spinner, &WaitingSpinnerWidget::stop);
    connect(controller, &BlockingController::SignalBackupFinished, spinner, &WaitingSpinnerWidget::stop);
    connect(ui->comboBox_sensor, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(slot_comboBox_sensor_currentIndexChanged(QString)));
    worker->start();
}

/// Sets up everything besides the controls: keys, guards, and the state in the status bar.
void MainWindow::SetUpAdditions() {
    NameControls(*ui);
    SetUpKeys();
    auto* const guard = new InputGuard(this);
    for (QWidget* const control :
         std::initializer_list<QWidget*>{ui->comboBox_sensor, ui->comboBox_file, ui->comboBox_operation,
                                         ui->comboBox_lineType, ui->spinBox_pathId, ui->spinBox_segmentId})
        guard->ignoreWheel(*control);
    guard->openByKeys(*ui->comboBox_operation);
    connect(&document, &TrackDocument::modifiedChanged, this, &MainWindow::ShowState);
    connect(&document, &TrackDocument::restored, segments.get(), &SegmentPanel::followPaths);
    protection->Recover();
    ShowState();
}

void MainWindow::SetUpKeys() {
    const auto isBusy = [this] { return spinner->isSpinning(); };
    const auto mayNotEdit = [this, isBusy] { return isBusy() || navigation->isPanning(); };
    QMaskWidget& canvas = *ui->label_mask;
    undoActions = std::make_unique<UndoActions>(*this, canvas, isBusy);
    navigation = std::make_unique<ViewNavigation>(
        ViewNavigation::Context{*this, *ui->scrollArea, canvas, *scale, isBusy});
    canvasKeys = std::make_unique<CanvasKeys>(
        CanvasKeys::Context{*this, *ui->scrollArea, canvas, *segments, mayNotEdit});
    readOuts = std::make_unique<ReadOuts>(*ui->statusBar, canvas);
    connect(&canvas, &QMaskWidget::segmentsShifted, segments.get(), &SegmentPanel::followPaths);
}

void MainWindow::ShowState() {
    stateLabel->showState(document.hasImage() && document.isModified(), !protection->Unsent().IsEmpty(),
                          sources->LinksLeftOut());
}

void MainWindow::RunSlot(const std::function<void()>& body, const std::function<void()>& onFailure) {
    try {
        body();
    } catch (const Ve::Exception& failure) {
        if (onFailure)
            onFailure();
        const std::string status = bStatus_Name(failure.Status());
        LOG_LINE(ERROR) << "(" << status << ") " << failure.what();
        ShowState();
        trackPanel->showError(QString::fromStdString(status + " - " + failure.what()));
    }
    ShowState();
}

bool MainWindow::rulerShown() const {
    return ruler->isShown();
}

void MainWindow::refreshRuler() {
    ruler->refresh();
}

/// While the worker uses the client, the window does not close.
void MainWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!spinner->isSpinning());
    if (spinner->isSpinning())
        stateLabel->showCloseRefused();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    ui->scrollArea->resize(ui->scrollArea->width(), ui->scrollArea->height());
    QMainWindow::resizeEvent(event);
}

void MainWindow::on_horizontalSlider_resizeImage_valueChanged(int value) {
    scale->apply(value);
}

void MainWindow::on_pushButton_deleteLast_clicked() {
    segments->deleteLast();
}

void MainWindow::on_pushButton_deleteAll_clicked() {
    segments->deleteAll();
}

void MainWindow::on_pushButton_getRuler_clicked() {
    ruler->toggle();
}

void MainWindow::on_checkBox_batchSetting_clicked(bool checked) {
    segments->setBatchMode(checked);
}

void MainWindow::on_spinBox_pathId_valueChanged(int number) {
    segments->choosePath(number);
}

void MainWindow::on_spinBox_segmentId_valueChanged(int number) {
    segments->chooseSegment(number);
}

void MainWindow::on_comboBox_lineType_currentIndexChanged(int index) {
    segments->setMethod(index);
}

void MainWindow::on_lineEdit_lineLength_textChanged(const QString& text) {
    segments->setFromText(SegmentParameter::Length, text);
}

void MainWindow::on_lineEdit_lineWidth_textChanged(const QString& text) {
    segments->setFromText(SegmentParameter::Width, text);
}

void MainWindow::on_lineEdit_lineSpace_textChanged(const QString& text) {
    segments->setFromText(SegmentParameter::Space, text);
}

void MainWindow::on_pushButton_sensor_clicked() {
    RunSlot([this] { sources->PressConnectionButton(); });
}

void MainWindow::on_comboBox_file_currentIndexChanged(const QString& text) {
    trackPanel->followChosenTrack(text);
}

// The operation runs as soon as it is chosen; the list then returns to "Normal", which calls this slot again
// and does nothing.
void MainWindow::on_comboBox_operation_currentIndexChanged(const QString& text) {
    if (text == tr("Normal"))
        return;
    bool finished = false;
    RunSlot([&] { finished = RunOperation(text); }, [this] { trackPanel->returnToNormal(); });
    if (finished && ui->comboBox_operation->currentText() != tr("Normal"))
        ui->statusBar->showMessage(text + tr(" successfully."));
    trackPanel->returnToNormal();
    ui->label_mask->setFocus(Qt::OtherFocusReason); // the next key must not go to the list
}

bool MainWindow::RunOperation(const QString& operation) {
    if (operation == tr("Load"))
        return tracks->Load();
    if (operation == tr("Save"))
        return tracks->Save();
    if (operation == tr("Save As"))
        return tracks->SaveAs();
    if (operation == tr("Delete"))
        return tracks->Delete();
    if (operation != tr("Refresh"))
        return false;
    tracks->RefreshTrackList();
    return true;
}

void MainWindow::on_toolButton_upload_clicked() {
    RunSlot([this] { sources->Upload(); });
}

void MainWindow::on_toolButton_reset_clicked() {
    RunSlot([this] { sources->Reset(); }, [this] { sourcePanel->enableConnection(false); });
}

void MainWindow::slot_comboBox_sensor_currentIndexChanged(const QString& text) {
    RunSlot([&] { sources->ChooseSource(SourcePanel::isBackupFile(text)); });
}

void MainWindow::SlotProcessRestore(const Ve::Exception& result) {
    RunSlot([&] { sources->FinishRestore(result); });
}

void MainWindow::SlotProcessBackup(const Ve::Exception& result) {
    RunSlot([&] { sources->FinishBackup(result); });
}
