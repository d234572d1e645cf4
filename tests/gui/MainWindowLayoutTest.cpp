#include "WindowTest.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QIntValidator>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QToolButton>
#include <QTranslator>

#include <vector>

namespace {

using ::testing::ElementsAre;

/// A widget of the form: its name, its class and its parent's name.
struct Row {
    const char* name;
    const char* type;
    const char* parent;
};

// The viewport belongs to the scroll area and contains the canvas.
const std::vector<Row> kTree = {
    {"centralwidget", "QWidget", "MainWindow"},
    {"statusBar", "QStatusBar", "MainWindow"},
    {"label_mask", "QMaskWidget", "qt_scrollarea_viewport"},
    {"scrollArea", "QScrollArea", "centralwidget"},
    {"splitter", "QSplitter", "centralwidget"},
    {"layoutWidget", "QWidget", "splitter"},
    {"label_sensorIP", "QLabel", "layoutWidget"},
    {"comboBox_sensor", "QComboBox", "layoutWidget"},
    {"toolButton_reset", "QToolButton", "splitter"},
    {"pushButton_sensor", "QPushButton", "centralwidget"},
    {"line", "QFrame", "centralwidget"},
    {"groupBox", "QGroupBox", "centralwidget"},
    {"label", "QLabel", "groupBox"},
    {"label_fileName", "QLabel", "groupBox"},
    {"label_file", "QLabel", "groupBox"},
    {"comboBox_file", "QComboBox", "groupBox"},
    {"label_operation", "QLabel", "groupBox"},
    {"comboBox_operation", "QComboBox", "groupBox"},
    {"toolButton_upload", "QToolButton", "centralwidget"},
    {"line_2", "QFrame", "centralwidget"},
    {"label_heightMin", "QLabel", "centralwidget"},
    {"lineEdit_heightMin", "QLineEdit", "centralwidget"},
    {"label_heightMax", "QLabel", "centralwidget"},
    {"lineEdit_heightMax", "QLineEdit", "centralwidget"},
    {"horizontalSlider_resizeImage", "QSlider", "centralwidget"},
    {"label_scale", "QLabel", "centralwidget"},
    {"line_3", "QFrame", "centralwidget"},
    {"pushButton_deleteLast", "QPushButton", "centralwidget"},
    {"pushButton_deleteAll", "QPushButton", "centralwidget"},
    {"pushButton_getRuler", "QPushButton", "centralwidget"},
    {"line_4", "QFrame", "centralwidget"},
    {"checkBox_batchSetting", "QCheckBox", "centralwidget"},
    {"label_path", "QLabel", "centralwidget"},
    {"spinBox_pathId", "QSpinBox", "centralwidget"},
    {"label_segment", "QLabel", "centralwidget"},
    {"spinBox_segmentId", "QSpinBox", "centralwidget"},
    {"label_length", "QLabel", "centralwidget"},
    {"lineEdit_lineLength", "QLineEdit", "centralwidget"},
    {"label_width", "QLabel", "centralwidget"},
    {"lineEdit_lineWidth", "QLineEdit", "centralwidget"},
    {"label_space", "QLabel", "centralwidget"},
    {"lineEdit_lineSpace", "QLineEdit", "centralwidget"},
    {"label_method", "QLabel", "centralwidget"},
    {"comboBox_lineType", "QComboBox", "centralwidget"},
};

/// One row of the control column: the names of its items from left to right; a spacer is
/// "<horizontal>" or "<vertical>".
std::vector<std::string> WidgetNamesIn(QLayoutItem* item) {
    if (item->widget() != nullptr)
        return {item->widget()->objectName().toStdString()};
    if (item->spacerItem() != nullptr)
        return {item->expandingDirections() == Qt::Horizontal ? "<horizontal>" : "<vertical>"};
    std::vector<std::string> names;
    for (int index = 0; index < item->layout()->count(); ++index)
        for (const std::string& name : WidgetNamesIn(item->layout()->itemAt(index)))
            names.push_back(name);
    return names;
}

class MainWindowLayout : public WindowTest {
  protected:
    void SetUp() override { openWindow(); }

    QLayout& layout(const char* name) {
        auto* const found = window->findChild<QLayout*>(QString::fromLatin1(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no such layout: ") + name);
        return *found;
    }

    QSizePolicy::Policy across(const char* name) {
        return find<QWidget>(name).sizePolicy().horizontalPolicy();
    }
    QSizePolicy::Policy down(const char* name) { return find<QWidget>(name).sizePolicy().verticalPolicy(); }
};

TEST_F(MainWindowLayout, hasEveryWidgetWithItsClassAndParent) {
    for (const Row& row : kTree) {
        const auto found = window->findChildren<QWidget*>(QString::fromLatin1(row.name));
        ASSERT_EQ(found.size(), 1) << row.name;
        EXPECT_STREQ(found[0]->metaObject()->className(), row.type) << row.name;
        EXPECT_EQ(found[0]->parentWidget()->objectName().toStdString(), row.parent) << row.name;
    }
}

TEST_F(MainWindowLayout, hasNoOtherNamedWidgets) {
    const QList<QWidget*> direct =
        find<QWidget>("centralwidget").findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    std::size_t expected = 0;
    for (const Row& row : kTree)
        expected += std::string(row.parent) == "centralwidget" ? 1 : 0;
    EXPECT_EQ(static_cast<std::size_t>(direct.size()), expected);
    EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("scrollAreaWidgetContents")), nullptr);
}

TEST_F(MainWindowLayout, hasSizesAndPolicies) {
    EXPECT_EQ(window->objectName(), QStringLiteral("MainWindow"));
    EXPECT_FALSE(window->isModal());
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(window->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    EXPECT_EQ(window->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    for (const char* name : {"centralwidget", "scrollArea"}) {
        EXPECT_EQ(across(name), QSizePolicy::Expanding) << name;
        EXPECT_EQ(down(name), QSizePolicy::Expanding) << name;
    }
    EXPECT_EQ(across("label_mask"), QSizePolicy::Maximum);
    EXPECT_EQ(down("label_mask"), QSizePolicy::Maximum);
    EXPECT_EQ(canvas().minimumSize(), QSize(0, 0));
    EXPECT_EQ(canvas().alignment(), Qt::AlignCenter);
    EXPECT_EQ(canvas().margin(), 0);
    EXPECT_EQ(find<QScrollArea>("scrollArea").minimumSize(), QSize(10, 10));
    EXPECT_EQ(find<QToolButton>("toolButton_upload").iconSize(), QSize(70, 70));
    EXPECT_TRUE(find<QToolButton>("toolButton_upload").autoRaise());
    EXPECT_TRUE(find<QToolButton>("toolButton_reset").autoRaise());
    EXPECT_EQ(find<QLabel>("label_fileName").styleSheet(),
              QStringLiteral("background-color: rgb(255, 255, 255);"));
    EXPECT_EQ(find<QComboBox>("comboBox_operation").layoutDirection(), Qt::LeftToRight);
    for (const char* name : {"line", "line_2", "line_3", "line_4"}) {
        EXPECT_EQ(find<QFrame>(name).frameShape(), QFrame::HLine) << name;
        EXPECT_EQ(find<QFrame>(name).frameShadow(), QFrame::Sunken) << name;
    }
}

TEST_F(MainWindowLayout, startsAt845By571) {
    const MainWindow fresh;
    EXPECT_EQ(fresh.size(), QSize(845, 571));
}

TEST_F(MainWindowLayout, iconsComeFromTheResources) {
    const std::vector<std::pair<QIcon, const char*>> icons = {
        {window->windowIcon(), ":/icon/icon/app.ico"},
        {find<QToolButton>("toolButton_reset").icon(), ":/icon/icon/refresh.png"},
        {find<QToolButton>("toolButton_upload").icon(), ":/icon/icon/upload.png"},
    };
    for (const auto& [icon, file] : icons) {
        const QImage expected = QIcon(QString::fromLatin1(file)).pixmap(64, 64).toImage();
        ASSERT_FALSE(expected.isNull()) << file;
        EXPECT_EQ(icon.pixmap(64, 64).toImage(), expected) << file;
    }
}

TEST_F(MainWindowLayout, controlColumnIsInOrder) {
    const std::vector<std::vector<std::string>> expected = {
        {"splitter"},
        {"pushButton_sensor"},
        {"line"},
        {"groupBox"},
        {"<horizontal>", "toolButton_upload", "<horizontal>"},
        {"line_2"},
        {"label_heightMin", "lineEdit_heightMin", "label_heightMax", "lineEdit_heightMax"},
        {"horizontalSlider_resizeImage", "label_scale"},
        {"line_3"},
        {"pushButton_deleteLast", "pushButton_deleteAll"},
        {"pushButton_getRuler"},
        {"line_4"},
        {"checkBox_batchSetting"},
        {"label_path", "spinBox_pathId", "label_segment", "spinBox_segmentId"},
        {"label_length", "lineEdit_lineLength", "label_width", "lineEdit_lineWidth"},
        {"label_space", "lineEdit_lineSpace"},
        {"label_method", "comboBox_lineType"},
        {"<vertical>"},
    };
    QLayout& column = layout("_2");
    EXPECT_STREQ(column.metaObject()->className(), "QVBoxLayout");
    EXPECT_EQ(column.sizeConstraint(), QLayout::SetDefaultConstraint);
    std::vector<std::vector<std::string>> found;
    for (int index = 0; index < column.count(); ++index)
        found.push_back(WidgetNamesIn(column.itemAt(index)));
    EXPECT_EQ(found, expected);
}

TEST_F(MainWindowLayout, controlColumnHasItsNamedLayouts) {
    const std::vector<std::pair<int, const char*>> rows = {
        {4, "horizontalLayout"},    {6, "horizontalLayout_4"},  {7, "horizontalLayout_5"},
        {9, "horizontalLayout_6"},  {13, "horizontalLayout_7"}, {14, "horizontalLayout_8"},
        {15, "horizontalLayout_9"}, {16, "horizontalLayout_10"}};
    for (const auto& [place, name] : rows) {
        EXPECT_EQ(layout("_2").itemAt(place)->layout(), &layout(name)) << name;
        EXPECT_STREQ(layout(name).metaObject()->className(), "QHBoxLayout") << name;
    }
    for (const int place : {0, 2}) {
        QLayoutItem& spacer = *layout("horizontalLayout").itemAt(place);
        EXPECT_EQ(spacer.sizeHint(), QSize(40, 20)) << place;
        EXPECT_EQ(spacer.spacerItem()->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding) << place;
        EXPECT_EQ(spacer.spacerItem()->sizePolicy().verticalPolicy(), QSizePolicy::Minimum) << place;
    }
    QLayoutItem& bottom = *layout("_2").itemAt(17);
    EXPECT_EQ(bottom.sizeHint(), QSize(20, 40));
    EXPECT_EQ(bottom.spacerItem()->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    EXPECT_EQ(bottom.spacerItem()->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
}

TEST_F(MainWindowLayout, hasStretchAndAlignment) {
    const auto& grid = dynamic_cast<QGridLayout&>(layout("gridLayout"));
    EXPECT_EQ(grid.columnStretch(0), 1);
    EXPECT_EQ(grid.columnStretch(1), 0);
    EXPECT_EQ(grid.columnStretch(2), 10);
    const auto stretches = [this](const char* name) {
        const auto& row = dynamic_cast<QBoxLayout&>(layout(name));
        std::vector<int> found;
        for (int index = 0; index < row.count(); ++index)
            found.push_back(row.stretch(index));
        return found;
    };
    EXPECT_THAT(stretches("horizontalLayout_5"), ElementsAre(1, 0));
    EXPECT_THAT(stretches("horizontalLayout_9"), ElementsAre(0, 1));
    EXPECT_THAT(stretches("horizontalLayout_10"), ElementsAre(0, 1));
    EXPECT_THAT(stretches("horizontalLayout_8"), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(layout("horizontalLayout_8").itemAt(3)->alignment(), Qt::AlignRight);
    EXPECT_EQ(layout("horizontalLayout_8").itemAt(1)->alignment(), Qt::Alignment());
}

TEST_F(MainWindowLayout, hasGridsAndForms) {
    const auto& grid = dynamic_cast<QGridLayout&>(layout("gridLayout"));
    EXPECT_EQ(find<QWidget>("centralwidget").layout(), &grid);
    EXPECT_EQ(grid.itemAtPosition(0, 0)->layout(), &layout("_2"));
    EXPECT_EQ(grid.itemAtPosition(0, 2)->widget(), &find<QScrollArea>("scrollArea"));
    const auto& group = dynamic_cast<QGridLayout&>(layout("gridLayout_2"));
    EXPECT_EQ(find<QGroupBox>("groupBox").layout(), &group);
    EXPECT_EQ(group.itemAtPosition(0, 0)->layout(), &layout("formLayout"));
    const auto fields = [](const QFormLayout& form) {
        std::vector<std::string> names;
        for (int row = 0; row < form.rowCount(); ++row)
            for (const auto role : {QFormLayout::LabelRole, QFormLayout::FieldRole})
                names.push_back(form.itemAt(row, role)->widget()->objectName().toStdString());
        return names;
    };
    EXPECT_THAT(fields(dynamic_cast<QFormLayout&>(layout("formLayout"))),
                ElementsAre("label", "label_fileName", "label_file", "comboBox_file", "label_operation",
                            "comboBox_operation"));
    const auto& source = dynamic_cast<QFormLayout&>(layout("formLayout_2"));
    EXPECT_THAT(fields(source), ElementsAre("label_sensorIP", "comboBox_sensor"));
    EXPECT_EQ(find<QWidget>("layoutWidget").layout(), &source);
    EXPECT_EQ(source.contentsMargins(), QMargins(0, 0, 0, 0));
    const auto& splitter = find<QSplitter>("splitter");
    EXPECT_EQ(splitter.orientation(), Qt::Horizontal);
    EXPECT_EQ(splitter.widget(0), &find<QWidget>("layoutWidget"));
    EXPECT_EQ(splitter.widget(1), &find<QToolButton>("toolButton_reset"));
    EXPECT_EQ(splitter.count(), 2);
}

TEST_F(MainWindowLayout, hasTexts) {
    const std::vector<std::pair<const char*, const char*>> texts = {
        {"label_mask", ""},
        {"label_sensorIP", "Source:"},
        {"toolButton_reset", ""},
        {"label", "FileName:"},
        {"label_fileName", ""},
        {"label_file", "File:"},
        {"label_operation", "Operation:"},
        {"toolButton_upload", ""},
        {"label_heightMin", "MinH:"},
        {"label_heightMax", "MaxH:"},
        {"label_scale", "Scale:100%"},
        {"pushButton_deleteLast", "Delete Last"},
        {"pushButton_deleteAll", "Delete All"},
        {"pushButton_getRuler", "Hide Ruler"},
        {"checkBox_batchSetting", "Batch Setting"},
        {"label_path", "Track:"},
        {"label_segment", "Segment:"},
        {"label_length", "Length:"},
        {"label_width", "Width:"},
        {"label_space", "Space:"},
        {"label_method", "Method:"},
    };
    for (const auto& [name, expected] : texts)
        EXPECT_EQ(text(name), expected) << name;
    EXPECT_EQ(window->windowTitle(), QStringLiteral("MainWindow"));
    EXPECT_EQ(find<QGroupBox>("groupBox").title(), QStringLiteral("File Operation"));
    EXPECT_EQ(find<QToolButton>("toolButton_reset").toolTip(), QStringLiteral("Reset"));
    EXPECT_EQ(items("comboBox_operation"),
              std::vector<std::string>({"Normal", "Load", "Save", "Save As", "Delete", "Refresh"}));
}

TEST_F(MainWindowLayout, translatesEveryTextInTheWindowsContext) {
    struct Marking : QTranslator {
        [[nodiscard]] QString translate(const char* context, const char* source, const char*,
                                        int) const override {
            return QLatin1String(context) == QLatin1String("MainWindow")
                       ? QLatin1Char('~') + QLatin1String(source)
                       : QString();
        }
        [[nodiscard]] bool isEmpty() const override { return false; }
    } marking;
    QCoreApplication::installTranslator(&marking);
    MainWindow translated;
    QCoreApplication::removeTranslator(&marking);
    for (const char* name :
         {"label_sensorIP", "label", "label_file", "label_operation", "label_heightMin", "label_heightMax",
          "pushButton_deleteLast", "pushButton_deleteAll", "pushButton_getRuler", "checkBox_batchSetting",
          "label_path", "label_segment", "label_length", "label_width", "label_space", "label_method"}) {
        const auto* widget = translated.findChild<QWidget*>(QString::fromLatin1(name));
        EXPECT_TRUE(widget->property("text").toString().startsWith(QLatin1Char('~'))) << name;
    }
    const auto* sources = translated.findChild<QComboBox*>(QStringLiteral("comboBox_sensor"));
    EXPECT_EQ(sources->itemText(sources->count() - 1), QStringLiteral("~Backup File"));
}

TEST_F(MainWindowLayout, hasTabOrder) {
    const std::vector<std::string> expected = {"pushButton_sensor",     "lineEdit_heightMin",
                                               "lineEdit_heightMax",    "horizontalSlider_resizeImage",
                                               "pushButton_deleteLast", "pushButton_deleteAll",
                                               "pushButton_getRuler",   "checkBox_batchSetting",
                                               "spinBox_pathId",        "spinBox_segmentId",
                                               "lineEdit_lineLength",   "lineEdit_lineWidth",
                                               "lineEdit_lineSpace",    "comboBox_lineType"};
    std::vector<std::string> found;
    QWidget* widget = &find<QWidget>("pushButton_sensor");
    do {
        const std::string name = widget->objectName().toStdString();
        if (std::find(expected.begin(), expected.end(), name) != expected.end())
            found.push_back(name);
        widget = widget->nextInFocusChain();
    } while (widget != &find<QWidget>("pushButton_sensor"));
    EXPECT_EQ(found, expected);
}

TEST_F(MainWindowLayout, tabKeyFollowsTheTabOrder) {
    find<QPushButton>("pushButton_sensor").setFocus();
    std::vector<std::string> visited;
    for (int step = 0; step < 12; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        visited.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_THAT(visited,
                ElementsAre("lineEdit_heightMin", "lineEdit_heightMax", "horizontalSlider_resizeImage",
                            "pushButton_deleteLast", "pushButton_deleteAll", "pushButton_getRuler",
                            "checkBox_batchSetting", "spinBox_pathId", "spinBox_segmentId",
                            "lineEdit_lineLength", "lineEdit_lineWidth", "lineEdit_lineSpace"));
}

TEST_F(MainWindowLayout, signalsAndSlotsKeepTheirOrder) {
    const std::vector<std::string> expected = {"SignalRestore(QString)",
                                               "SignalBackup(QString)",
                                               "on_horizontalSlider_resizeImage_valueChanged(int)",
                                               "on_pushButton_deleteLast_clicked()",
                                               "on_pushButton_deleteAll_clicked()",
                                               "on_pushButton_getRuler_clicked()",
                                               "on_checkBox_batchSetting_clicked(bool)",
                                               "on_spinBox_pathId_valueChanged(int)",
                                               "on_spinBox_segmentId_valueChanged(int)",
                                               "on_comboBox_lineType_currentIndexChanged(int)",
                                               "on_lineEdit_lineLength_textChanged(QString)",
                                               "on_lineEdit_lineWidth_textChanged(QString)",
                                               "on_lineEdit_lineSpace_textChanged(QString)",
                                               "on_pushButton_sensor_clicked()",
                                               "on_comboBox_file_currentIndexChanged(QString)",
                                               "on_comboBox_operation_currentIndexChanged(QString)",
                                               "on_toolButton_upload_clicked()",
                                               "on_toolButton_reset_clicked()",
                                               "slot_comboBox_sensor_currentIndexChanged(QString)",
                                               "SlotProcessRestore(Ve::Exception)",
                                               "SlotProcessBackup(Ve::Exception)"};
    const QMetaObject& meta = MainWindow::staticMetaObject;
    std::vector<std::string> found;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index)
        found.push_back(meta.method(index).methodSignature().toStdString());
    EXPECT_EQ(found, expected);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Signal);
    for (int index = meta.methodOffset() + 2; index < meta.methodCount(); ++index)
        EXPECT_EQ(meta.method(index).methodType(), QMetaMethod::Slot)
            << found[static_cast<std::size_t>(index - meta.methodOffset())];
}

TEST_F(MainWindowLayout, hasInitialStates) {
    EXPECT_FALSE(find<QComboBox>("comboBox_operation").isEnabled());
    for (const Row& row : kTree)
        EXPECT_EQ(find<QWidget>(row.name).isEnabled(), std::string(row.name) != "comboBox_operation")
            << row.name;
    for (const Row& row : kTree) {
        const std::string name = row.name;
        EXPECT_EQ(find<QWidget>(row.name).isHidden(), name == "comboBox_lineType" || name == "label_method")
            << name;
    }
    EXPECT_EQ(status(), "");
    EXPECT_EQ(text("lineEdit_heightMin"), "0");
    EXPECT_EQ(text("lineEdit_heightMax"), "0");
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    EXPECT_EQ(text("lineEdit_lineWidth"), "50");
    EXPECT_EQ(text("lineEdit_lineSpace"), "100");
    EXPECT_EQ(items("comboBox_lineType"), std::vector<std::string>({"Method 1 - Isolated track"}));
    EXPECT_EQ(find<QComboBox>("comboBox_lineType").currentIndex(), 0);
    EXPECT_FALSE(find<QCheckBox>("checkBox_batchSetting").isChecked());
    const auto& slider = find<QSlider>("horizontalSlider_resizeImage");
    EXPECT_EQ(slider.orientation(), Qt::Horizontal);
    EXPECT_EQ(slider.minimum(), 1);
    EXPECT_EQ(slider.maximum(), 80);
    EXPECT_EQ(slider.singleStep(), 1);
    EXPECT_EQ(slider.value(), 20);
    for (const char* name : {"spinBox_pathId", "spinBox_segmentId"}) {
        const auto& box = find<QSpinBox>(name);
        EXPECT_EQ(box.minimum(), 1) << name;
        EXPECT_EQ(box.maximum(), 10000) << name;
        EXPECT_EQ(box.value(), 1) << name;
    }
}

TEST_F(MainWindowLayout, canvasIsInTheScrollArea) {
    EXPECT_EQ(find<QScrollArea>("scrollArea").widget(), &canvas());
    EXPECT_FALSE(find<QScrollArea>("scrollArea").widgetResizable());
    EXPECT_TRUE(canvas().hasScaledContents());
    EXPECT_TRUE(canvas().hasMouseTracking());
}

TEST_F(MainWindowLayout, firstLogLineReportsTheStart) {
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Starting Corvane."));
}

TEST_F(MainWindowLayout, offersOnlyTheBackupFileWithoutAServer) {
    EXPECT_EQ(items("comboBox_sensor"), std::vector<std::string>({"Backup File"}));
    EXPECT_EQ(items("comboBox_file"), std::vector<std::string>({"External"}));
    EXPECT_TRUE(find<QPushButton>("pushButton_sensor").isEnabled());
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    EXPECT_EQ(find<QToolButton>("toolButton_upload").toolTip(), QStringLiteral("Save to Backup File"));
}

TEST_F(MainWindowLayout, validatorsRefuseValuesOutOfRange) {
    const auto acceptable = [this](const char* field, const char* number) {
        type(field, number);
        return find<QLineEdit>(field).hasAcceptableInput();
    };
    EXPECT_FALSE(acceptable("lineEdit_lineLength", "1"));
    EXPECT_TRUE(acceptable("lineEdit_lineLength", "2"));
    EXPECT_TRUE(acceptable("lineEdit_lineLength", "10000"));
    EXPECT_FALSE(acceptable("lineEdit_lineLength", "10001"));
    for (const char* field : {"lineEdit_lineWidth", "lineEdit_lineSpace"}) {
        EXPECT_TRUE(acceptable(field, "0")) << field;
        EXPECT_TRUE(acceptable(field, "10000")) << field;
        EXPECT_FALSE(acceptable(field, "10001")) << field;
        const auto* validator = qobject_cast<const QIntValidator*>(find<QLineEdit>(field).validator());
        EXPECT_EQ(validator->bottom(), 0) << field;
        EXPECT_EQ(validator->top(), 10000) << field;
    }
    const auto* validator =
        qobject_cast<const QIntValidator*>(find<QLineEdit>("lineEdit_lineLength").validator());
    EXPECT_EQ(validator->bottom(), 2);
    EXPECT_EQ(validator->top(), 10000);
}

TEST_F(MainWindowLayout, lettersAndGroupSeparatorsCannotBeTyped) {
    type("lineEdit_lineLength", "x1,0.0-0");
    EXPECT_EQ(text("lineEdit_lineLength"), "1000");
}

TEST_F(MainWindowLayout, growingTheWindowMainlyGrowsTheCanvas) {
    const int before = find<QScrollArea>("scrollArea").width();
    const int columnBefore = find<QWidget>("groupBox").width();
    window->resize(window->width() + 550, window->height());
    ASSERT_TRUE(QTest::qWaitFor([this, before] { return find<QScrollArea>("scrollArea").width() > before; }));
    const int grown = find<QScrollArea>("scrollArea").width() - before;
    EXPECT_GT(grown, 9 * (find<QWidget>("groupBox").width() - columnBefore));
}

TEST_F(MainWindowLayout, resizeSetsTheScrollAreasSizeAgain) {
    auto& area = find<QScrollArea>("scrollArea");
    const QSize before = area.size();
    area.setAttribute(Qt::WA_Resized, false); // set whenever a widget's size is set
    QResizeEvent event(window->size(), window->size());
    QApplication::sendEvent(window.get(), &event);
    EXPECT_TRUE(area.testAttribute(Qt::WA_Resized));
    EXPECT_EQ(area.size(), before);
}

TEST_F(MainWindowLayout, closingWithoutWorkingFilesDeletesAndReportsNothing) {
    WriteFile(folder.Path("keep.txt"), "kept");
    closeWindow();
    EXPECT_EQ(FileContent(folder.Path("keep.txt")), "kept");
    expectNoBox();
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Starting Corvane."));
}

} // namespace
