#include "window/TrackPanel.h"

#include "document/TrackDocument.h"
#include "ui_mainwindow.h"
#include "window/ControlNames.h"
#include "window/SegmentPanel.h"
#include "window/ViewScale.h"
#include "window/mainwindow.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QMessageBox>
#include <QStandardItemModel>

#include <algorithm>

namespace {

constexpr int kDeleteItem = 4;
constexpr int kMinVisibleLetters = 10; ///< of a list's chosen entry
constexpr int kMaxListWidth = 600;     ///< of an open list: fits any screen; longer names are elided

/// How wide an open list must be to show its items.
int OpenListWidth(const QComboBox& box) {
    constexpr int kFrame = 40; // the frame and a scroll bar
    int widest = 0;
    for (int index = 0; index < box.count(); ++index)
        widest = std::max(widest, box.view()->fontMetrics().horizontalAdvance(box.itemText(index)));
    return std::min(widest + kFrame, kMaxListWidth);
}

QString TrackFilter() {
    return QStringLiteral("track (*.trk)");
}

} // namespace

TrackPanel::TrackPanel(Ui::MainWindow& ui, QWidget& window, const TrackDocument& document,
                       Neighbours neighbours)
    : ui(ui), window(window), document(document), others(neighbours) {
    setUp();
}

/// However long a file name is, the canvas keeps its space; the tool tip has the complete name. The name is
/// on white, so it is black whatever the desktop's colours are.
void TrackPanel::setUp() {
    QPalette onWhite = ui.label_fileName->palette();
    onWhite.setColor(QPalette::WindowText, Qt::black);
    ui.label_fileName->setPalette(onWhite);
    for (QComboBox* const list : {ui.comboBox_file, ui.comboBox_sensor}) {
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->setMinimumContentsLength(kMinVisibleLetters);
        list->view()->parentWidget()->setMaximumWidth(kMaxListWidth);
    }
    ui.label_fileName->setTextFormat(Qt::PlainText);
    ui.label_fileName->setSizePolicy(QSizePolicy::Ignored, ui.label_fileName->sizePolicy().verticalPolicy());
    ui.comboBox_file->view()->setTextElideMode(Qt::ElideMiddle);
}

void TrackPanel::followChosenTrack(const QString& text) {
    SetPlainToolTip(*ui.comboBox_file, text);
    const bool external = text == MainWindow::tr("External");
    auto* items = qobject_cast<QStandardItemModel*>(ui.comboBox_operation->model());
    items->item(kDeleteItem)
        ->setFlags(external ? Qt::ItemFlags(Qt::NoItemFlags) : Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

void TrackPanel::returnToNormal() {
    ui.comboBox_operation->setCurrentIndex(0);
}

void TrackPanel::showError(const QString& text) {
    QMessageBox box(QMessageBox::Critical, MainWindow::tr("Error"), text, QMessageBox::Ok, &window);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool TrackPanel::isExternalChosen() const {
    return chosenTrack() == MainWindow::tr("External");
}

QString TrackPanel::chosenTrack() const {
    return ui.comboBox_file->currentText();
}

int TrackPanel::chosenTrackIndex() const {
    return ui.comboBox_file->currentIndex();
}

QString TrackPanel::askForTrack() {
    return QFileDialog::getOpenFileName(&window, MainWindow::tr("Please select a track file"),
                                        QStringLiteral("."), TrackFilter());
}

QString TrackPanel::askForCopyName() {
    return QFileDialog::getSaveFileName(&window, MainWindow::tr("Please input a name for track file"),
                                        QStringLiteral("."), TrackFilter());
}

void TrackPanel::showTrackList(const QStringList& names) {
    ui.comboBox_file->clear();
    ui.comboBox_file->addItems(names);
    ui.comboBox_file->addItem(MainWindow::tr("External"));
    ui.comboBox_file->view()->setMinimumWidth(OpenListWidth(*ui.comboBox_file));
}

void TrackPanel::removeFromTrackList(int index) {
    ui.comboBox_file->removeItem(index);
}

void TrackPanel::chooseTrack(const QString& name) {
    ui.comboBox_file->setCurrentText(name);
}

void TrackPanel::showFileName(const QString& name, bool external) {
    const QString text = external ? MainWindow::tr("External - ") + name : name;
    ui.label_fileName->setText(text);
    SetPlainToolTip(*ui.label_fileName, text);
}

void TrackPanel::showHeights(double lowest, double highest) {
    ui.lineEdit_heightMin->setText(QString::number(lowest));
    ui.lineEdit_heightMax->setText(QString::number(highest));
}

void TrackPanel::showTrack() {
    ui.label_mask->setPixmap(QPixmap::fromImage(document.image()));
    others.scale.fit();
    others.segments.reset();
}

void TrackPanel::showPaths() {
    others.ruler.refreshIfShown();
    others.segments.choosePath(1);
}

void TrackPanel::showNoTrack() {
    ui.label_mask->clear();
    ui.label_mask->adjustSize(); // nothing remains to be scrolled
}

void TrackPanel::showNothingToSave() {
    returnToNormal();
    showError(MainWindow::tr("Please load a track file firstly."));
}

void TrackPanel::refreshRuler() {
    others.ruler.refresh();
}
