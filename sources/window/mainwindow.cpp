#include "mainwindow.h"

#include "Log.h"
#include "ui_mainwindow.h"

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), ui(std::make_unique<Ui::MainWindow>()) {
    ui->setupUi(this);
    LOG_LINE(INFO) << "Starting Corvane.";
}

MainWindow::~MainWindow() = default;
