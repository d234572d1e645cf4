#include "window/mainwindow.h"

#include "basalt/bStatus.h"
#include "link/BlockingController.h"
#include "log/Log.h"
#include "ui_mainwindow.h"
#include "window/WaitCursor.h"
#include "window/WaitingSpinnerWidget.h"
#include "window/WorkerThread.h"
#include "window/WorkingFiles.h"

#include <QCloseEvent>
#include <QFileDialog>

namespace {

// Known to those who read reports: they stay when the code around them moves.
constexpr int kNoBackupFileLine = 853;
constexpr int kNotConnectedLine = 867;

constexpr const char* kSourceFile = "mainwindow";
constexpr int kSpinnerSize = 20; ///< pixels, of the ring's hole and of its bars

Ve::Exception NothingToUpload(int line, const char* message) {
    return {line, kSourceFile, bERROR_FILE, "MainWindow::on_toolButton_upload_clicked", "%s", message};
}

bool IsBackupFile(const QString& source) {
    return source == MainWindow::tr("Backup File");
}

/// A title shows the text as it stands; the toolkit takes "[*]" for the place of a mark unless it is doubled.
QString TitleText(QString text) {
    return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

} // namespace

void MainWindow::SetUpWorker() {
    qRegisterMetaType<Ve::Exception>("Ve::Exception");
    worker = std::make_unique<WorkerThread>(client);
    spinner = new WaitingSpinnerWidget(Qt::WindowModal, this, true, true);
    spinner->setInnerRadius(kSpinnerSize);
    spinner->setLineLength(kSpinnerSize);
    BlockingController* const controller = &worker->controller();
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

/// While the worker uses the client, the window stays.
void MainWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!spinner->isSpinning());
}

void MainWindow::FillSourceList() {
    ui->comboBox_sensor->clear();
    OstraSdkClient::DiscoverOstraServers(servers);
    for (const OstraServerInfo& server : servers)
        ui->comboBox_sensor->addItem(QString::fromStdString(server.address));
    ui->comboBox_sensor->addItem(tr("Backup File"));
}

bool MainWindow::SourceIsOpen() const {
    return client.IsConnected() || backupFileOpen;
}

bool MainWindow::ServerIsOpen() const {
    return client.IsConnected() && ui->pushButton_sensor->text() == tr("Disconnect Sensor");
}

void MainWindow::ShowUploadTarget(const QString& source) {
    ui->toolButton_upload->setToolTip(IsBackupFile(source) ? tr("Save to Backup File")
                                                           : tr("Sync to server"));
}

void MainWindow::ShowConnection(const QString& source) {
    if (IsBackupFile(source))
        ui->pushButton_sensor->setText(tr("Load Backup"));
    else
        ui->pushButton_sensor->setText(client.IsConnected() ? tr("Disconnect Sensor") : tr("Connect Sensor"));
}

void MainWindow::CloseTrack() {
    ui->label_mask->clear();
    ui->label_mask->adjustSize(); // nothing is left to scroll
    ShowFileName({});
    heightMap = QImage();
    trackLoaded = false;
    ShowHeights(0.0, 0.0);
}

void MainWindow::slot_comboBox_sensor_currentIndexChanged(const QString& text) {
    RunSlot([this, &text] {
        ShowUploadTarget(text);
        client.Disconnect();
        CloseTrack();
        backupFileOpen = false;
        RefreshTrackList();
        setWindowTitle(QStringLiteral("Corvane"));
        ui->label_mask->resetPaths();
        ui->comboBox_operation->setEnabled(false);
        ShowConnection(text);
    });
}

void MainWindow::on_pushButton_sensor_clicked() {
    RunSlot([this] {
        backupFileOpen = false;
        const QString state = ui->pushButton_sensor->text();
        if (state == tr("Disconnect Sensor"))
            DisconnectServer();
        else if (state == tr("Load Backup"))
            LoadBackup();
        else if (state == tr("Connect Sensor"))
            ConnectServer();
    });
}

/// A track of the workspace is closed with it, an external one stays open.
void MainWindow::DisconnectServer() {
    client.Disconnect();
    ui->comboBox_sensor->setEnabled(true);
    ui->pushButton_sensor->setText(tr("Connect Sensor"));
    if (trackLoaded && !externalTrack)
        CloseTrack();
    ui->statusBar->showMessage(tr("Disconnect successfully."));
    ui->comboBox_operation->setEnabled(false);
    setWindowTitle(QStringLiteral("Corvane"));
    RefreshTrackList();
}

void MainWindow::LoadBackup() {
    client.Disconnect();
    backupFilePath = QFileDialog::getOpenFileName(this, tr("Please select a Ostra backup file"),
                                                  QStringLiteral("."), QStringLiteral("Ostra (*.osbak)"))
                         .toStdString();
    if (backupFilePath.empty())
        return;
    const WaitCursor waiting;
    UnpackBackup(backupFilePath);
    backupFileOpen = true;
    ui->statusBar->showMessage(tr("Load backup file successfully."));
    RefreshTrackList();
    ui->comboBox_operation->setEnabled(true);
    setWindowTitle(QStringLiteral("Corvane - Backup File - ") +
                   TitleText(QString::fromStdString(backupFilePath)));
}

void MainWindow::ConnectServer() {
    const auto chosen = static_cast<std::size_t>(ui->comboBox_sensor->currentIndex());
    if (chosen >= servers.size())
        throw Ve::Exception(__LINE__, kSourceFile, bERROR_NOT_CONNECTED,
                            "MainWindow::on_pushButton_sensor_clicked", "Please select a sensor server.");
    const WaitCursor waiting;
    client.Connect(servers[chosen].address, servers[chosen].controlPort);
    ui->statusBar->showMessage(tr("Connecting to the sensor ..."));
    emit SignalBackup(QString::fromLatin1(kServerBackup));
}

void MainWindow::SlotProcessBackup(const Ve::Exception& result) {
    RunSlot([this, &result] {
        if (result.Status() != bOK)
            throw Ve::Exception(result);
        const WaitCursor waiting;
        backupFilePath = kServerBackup;
        UnpackBackup(backupFilePath);
        if (ui->pushButton_sensor->text() == tr("Connect Sensor")) {
            ui->pushButton_sensor->setText(tr("Disconnect Sensor"));
            ui->comboBox_sensor->setEnabled(false);
            ui->statusBar->showMessage(tr("Connect successfully."));
        }
        RefreshTrackList();
        ui->comboBox_operation->setEnabled(true);
        backupFileOpen = false;
        setWindowTitle(QStringLiteral("Corvane - Sensor - ") + TitleText(ui->comboBox_sensor->currentText()));
    });
}

void MainWindow::SlotProcessRestore(const Ve::Exception& result) {
    RunSlot([this, &result] {
        if (result.Status() != bOK)
            throw Ve::Exception(result);
        ui->statusBar->showMessage(tr("Restoring successfully."));
    });
}

void MainWindow::on_toolButton_upload_clicked() {
    RunSlot([this] {
        if (IsBackupFile(ui->comboBox_sensor->currentText()))
            SaveToBackupFile();
        else
            SyncToServer();
    });
}

void MainWindow::SaveToBackupFile() {
    if (!backupFileOpen)
        throw NothingToUpload(kNoBackupFileLine, "Please open a backup file firstly.");
    const WaitCursor waiting;
    ShowStatusNow(tr("Saving the backup file..."));
    PackBackup(backupFilePath);
    ui->statusBar->showMessage(tr("Saved the backup file successfully."));
}

/// A server whose backup could not be fetched is connected, but the working folders are not its own: they
/// must not reach it.
void MainWindow::SyncToServer() {
    if (!ServerIsOpen())
        throw NothingToUpload(kNotConnectedLine,
                              "Please connect to Ostra server or load a backup file firstly.");
    const WaitCursor waiting;
    PackBackup(backupFilePath);
    ShowStatusNow(tr("Restoring the sensor ..."));
    emit SignalRestore(QString::fromStdString(backupFilePath));
}

/// The work that follows keeps the window from painting by itself.
void MainWindow::ShowStatusNow(const QString& text) {
    ui->statusBar->showMessage(text);
    ui->statusBar->repaint();
}

void MainWindow::on_toolButton_reset_clicked() {
    const auto reset = [this] {
        client.Disconnect();
        CloseTrack();
        backupFileOpen = false;
        RefreshTrackList();
        FillSourceList();
        setWindowTitle(QStringLiteral("Corvane"));
        ui->comboBox_sensor->setEnabled(true);
        ui->pushButton_sensor->setEnabled(true); // an earlier reset may have failed
        ui->label_mask->resetPaths();
        ui->comboBox_operation->setEnabled(false);
        ui->statusBar->showMessage(tr("Reset successfully."));
    };
    RunSlot(reset, [this] { ui->pushButton_sensor->setEnabled(false); });
}

void MainWindow::LeaveServer() {
    if (ui->pushButton_sensor->text() != tr("Disconnect Sensor"))
        return;
    try {
        client.Disconnect();
    } catch (const Ve::Exception& failure) { // the server may be gone; the window goes all the same
        LogFailure(failure);
    }
}
