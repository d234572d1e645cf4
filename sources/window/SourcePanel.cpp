#include "window/SourcePanel.h"

#include "ui_mainwindow.h"
#include "window/mainwindow.h"

#include <QFileDialog>

namespace {

/// A title that shows the text literally: Qt replaces "[*]" in a title by a mark unless it is doubled.
QString TitleText(QString text) {
    return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString TextOf(SourceView::ConnectionAction action) {
    switch (action) {
    case SourceView::ConnectionAction::Connect:
        return MainWindow::tr("Connect Sensor");
    case SourceView::ConnectionAction::Disconnect:
        return MainWindow::tr("Disconnect Sensor");
    case SourceView::ConnectionAction::LoadBackup:
        break;
    }
    return MainWindow::tr("Load Backup");
}

} // namespace

SourcePanel::SourcePanel(Ui::MainWindow& ui, QMainWindow& window) : ui(ui), window(window) {
}

bool SourcePanel::isBackupFile(const QString& source) {
    return source == MainWindow::tr("Backup File");
}

bool SourcePanel::isBackupFileChosen() const {
    return isBackupFile(chosenSource());
}

QString SourcePanel::chosenSource() const {
    return ui.comboBox_sensor->currentText();
}

int SourcePanel::chosenSourceIndex() const {
    return ui.comboBox_sensor->currentIndex();
}

QString SourcePanel::askForBackup() {
    return QFileDialog::getOpenFileName(&window, MainWindow::tr("Please select a Ostra backup file"),
                                        QStringLiteral("."), QStringLiteral("Ostra (*.osbak)"));
}

void SourcePanel::clearSources() {
    ui.comboBox_sensor->clear();
}

void SourcePanel::showSources(const std::vector<OstraServerInfo>& servers) {
    for (const OstraServerInfo& server : servers)
        ui.comboBox_sensor->addItem(QString::fromStdString(server.address));
    ui.comboBox_sensor->addItem(MainWindow::tr("Backup File"));
}

void SourcePanel::showUploadTarget(bool backupFile) {
    ui.toolButton_upload->setToolTip(backupFile ? MainWindow::tr("Save to Backup File")
                                                : MainWindow::tr("Sync to server"));
}

void SourcePanel::showConnectionAction(ConnectionAction action) {
    ui.pushButton_sensor->setText(TextOf(action));
}

void SourcePanel::enableConnection(bool enabled) {
    ui.pushButton_sensor->setEnabled(enabled);
}

void SourcePanel::enableSources(bool enabled) {
    ui.comboBox_sensor->setEnabled(enabled);
}

void SourcePanel::enableOperations(bool enabled) {
    ui.comboBox_operation->setEnabled(enabled);
}

void SourcePanel::showOpenSource(const QString& kind, const QString& name) {
    QString title = QStringLiteral("Corvane");
    for (const QString& part : {kind, name})
        if (!part.isEmpty())
            title += QStringLiteral(" - ") + TitleText(part);
    window.setWindowTitle(title);
}

void SourcePanel::showStatus(const QString& message) {
    ui.statusBar->showMessage(message);
    ui.statusBar->repaint();
}
