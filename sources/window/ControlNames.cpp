#include "window/ControlNames.h"

#include "ui_mainwindow.h"
#include "window/mainwindow.h"

#include <QAbstractItemView>

void NameControls(Ui::MainWindow& ui) {
    struct Labelled {
        QLabel* label;
        QWidget* control;
        QString name;
    };
    const std::initializer_list<Labelled> labelled{
        {ui.label_sensorIP, ui.comboBox_sensor, MainWindow::tr("Source")},
        {ui.label_file, ui.comboBox_file, MainWindow::tr("File")},
        {ui.label_operation, ui.comboBox_operation, MainWindow::tr("Operation")},
        {ui.label_heightMin, ui.lineEdit_heightMin, MainWindow::tr("Lowest height")},
        {ui.label_heightMax, ui.lineEdit_heightMax, MainWindow::tr("Highest height")},
        {ui.label_scale, ui.horizontalSlider_resizeImage, MainWindow::tr("Scale")},
        {ui.label_path, ui.spinBox_pathId, MainWindow::tr("Track")},
        {ui.label_segment, ui.spinBox_segmentId, MainWindow::tr("Segment")},
        {ui.label_length, ui.lineEdit_lineLength, MainWindow::tr("Length")},
        {ui.label_width, ui.lineEdit_lineWidth, MainWindow::tr("Width")},
        {ui.label_space, ui.lineEdit_lineSpace, MainWindow::tr("Space")},
        {ui.label_method, ui.comboBox_lineType, MainWindow::tr("Method")},
    };
    for (const Labelled& each : labelled) {
        each.label->setBuddy(each.control);
        each.control->setAccessibleName(each.name);
        if (const auto* const list = qobject_cast<QComboBox*>(each.control))
            list->view()->setAccessibleName(each.name);
    }
    ui.toolButton_reset->setAccessibleName(MainWindow::tr("Reset"));
    ui.toolButton_upload->setAccessibleName(MainWindow::tr("Upload"));
    ui.scrollArea->setAccessibleName(MainWindow::tr("View of the height map"));
    ui.label_mask->setAccessibleName(MainWindow::tr("Height map"));
}

void SetPlainToolTip(QWidget& widget, const QString& text) {
    widget.setToolTip(
        text.isEmpty() ? text : QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>"));
    widget.setAccessibleDescription(text);
}
