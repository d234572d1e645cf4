#include "mainwindow.h"

#include "ui_mainwindow.h"

void MainWindow::FillSourceList() {
    ui->comboBox_sensor->clear();
    ui->comboBox_sensor->addItem(tr("Backup File"));
}

void MainWindow::ShowSource() {
    const bool backupFile = ui->comboBox_sensor->currentText() == tr("Backup File");
    ui->toolButton_upload->setToolTip(backupFile ? tr("Save to Backup File") : tr("Sync to server"));
    ui->pushButton_sensor->setText(backupFile ? tr("Load Backup") : tr("Connect Sensor"));
}

bool MainWindow::SourceIsOpen() const {
    return backupFileOpen;
}
