#include "window/mainwindow.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "log/Log.h"
#include "ui_mainwindow.h"
#include "window/WorkerThread.h"
#include "window/WorkingFiles.h"

#include <QAbstractItemView>
#include <QIntValidator>
#include <QMessageBox>

namespace {

constexpr int kLargestNumber = 10000;
constexpr int kShortestLength = 2;

/// Whole numbers in the C locale, whatever the desktop's: the same text means the same number everywhere.
QIntValidator* WholeNumbers(int lowest, int highest, QObject* parent) {
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    auto* validator = new QIntValidator(lowest, highest, parent);
    validator->setLocale(plain);
    return validator;
}

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), ui(std::make_unique<Ui::MainWindow>()) {
    ui->setupUi(this);
    LOG_LINE(INFO) << "Starting Corvane.";
    RunSlot([this] { FillSourceList(); });
    ui->pushButton_sensor->setEnabled(ui->comboBox_sensor->count() > 0);
    ShowUploadTarget(ui->comboBox_sensor->currentText());
    ShowConnection(ui->comboBox_sensor->currentText());
    SetUpFileNames();
    RefreshTrackList();
    SetUpCanvas();
    SetUpSegmentControls();
    ShowHeights(0.0, 0.0);
    SetUpWorker();
}

MainWindow::~MainWindow() {
    worker->finish();
    LeaveServer();
    RemoveWorkingFiles();
}

void MainWindow::SetUpCanvas() {
    ui->label_mask->setScaledContents(true);
    ui->label_mask->setMouseTracking(true);
    ui->scrollArea->setWidgetResizable(false);
    ui->scrollArea->setWidget(ui->label_mask);
    ui->scrollAreaWidgetContents = nullptr; // the scroll area has deleted it
}

/// However long a file name is, the canvas keeps its room; the tool tip tells the whole name.
void MainWindow::SetUpFileNames() {
    ui->label_fileName->setTextFormat(Qt::PlainText);
    ui->label_fileName->setSizePolicy(QSizePolicy::Ignored,
                                      ui->label_fileName->sizePolicy().verticalPolicy());
    ui->comboBox_file->view()->setTextElideMode(Qt::ElideMiddle);
}

void MainWindow::SetUpSegmentControls() {
    ui->spinBox_pathId->setRange(1, kLargestNumber);
    ui->spinBox_segmentId->setRange(1, kLargestNumber);
    ui->comboBox_lineType->addItem(tr("Method 1 - Isolated track"));
    ui->comboBox_lineType->hide();
    ui->label_method->hide();
    ui->lineEdit_lineLength->setValidator(WholeNumbers(kShortestLength, kLargestNumber, this));
    ui->lineEdit_lineWidth->setValidator(WholeNumbers(0, kLargestNumber, this));
    ui->lineEdit_lineSpace->setValidator(WholeNumbers(0, kLargestNumber, this));
    resetSegmentControls();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    ui->scrollArea->resize(ui->scrollArea->width(), ui->scrollArea->height());
    QMainWindow::resizeEvent(event);
}

void MainWindow::RunSlot(const std::function<void()>& body, const std::function<void()>& onFailure) {
    try {
        body();
    } catch (const Ve::Exception& failure) {
        if (onFailure)
            onFailure();
        LogFailure(failure);
        ShowError(
            QString::fromStdString(std::string(bStatus_Name(failure.Status())) + " - " + failure.what()));
    }
}

void MainWindow::LogFailure(const Ve::Exception& failure) {
    LOG_LINE(ERROR) << "(" << bStatus_Name(failure.Status()) << ") " << failure.what();
}

void MainWindow::ShowError(const QString& text) {
    QMessageBox box(QMessageBox::Critical, tr("Error"), text, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
