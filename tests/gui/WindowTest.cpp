#include "WindowTest.h"

#include "link/FileUtils.h"

#include <QAbstractItemView>
#include <QStatusBar>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

WindowTest::WindowTest() {
    setenv("CORVANE_KEPT", folder.Path("kept").c_str(), 1);
}

WindowTest::~WindowTest() = default;

void WindowTest::TearDown() {
    closeWindow();
    answers.note = {};
}

void WindowTest::openWindow() {
    window = std::make_unique<MainWindow>();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
}

void WindowTest::choose(const char* name, const std::string& text) {
    auto& combo = find<QComboBox>(name);
    const QString item = QString::fromStdString(text);
    combo.setFocus(); // as a click or Tab does
    QTest::keyClick(&combo, Qt::Key_Space);
    QAbstractItemView* const list = combo.view();
    ASSERT_TRUE(QTest::qWaitFor([list] { return list->isVisible(); }));
    QTest::keyClick(list, Qt::Key_Home);
    for (int step = 0; step < combo.count() && list->currentIndex().data().toString() != item; ++step)
        QTest::keyClick(list, Qt::Key_Down);
    const bool reached = list->currentIndex().data().toString() == item;
    QTest::keyClick(list, reached ? Qt::Key_Return : Qt::Key_Escape);
}

std::vector<std::string> WindowTest::items(const char* combo) {
    const auto& box = find<QComboBox>(combo);
    std::vector<std::string> found;
    for (int index = 0; index < box.count(); ++index)
        found.push_back(box.itemText(index).toStdString());
    return found;
}

void WindowTest::click(const char* button) {
    auto& widget = find<QWidget>(button);
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, widget.height() / 2));
}

void WindowTest::type(const char* lineEdit, const std::string& text) {
    auto& field = find<QLineEdit>(lineEdit);
    QTest::mouseClick(&field, Qt::LeftButton);
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, QString::fromStdString(text));
}

void WindowTest::typeNumber(const char* spinBox, const std::string& digits) {
    auto& box = find<QSpinBox>(spinBox);
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, QString::fromStdString(digits));
}

void WindowTest::clickCanvas(double x, double y) {
    QMaskWidget& target = canvas();
    const QPoint place(qRound(x * target.width()), qRound(y * target.height()));
    QTest::mouseMove(&target, place);
    QTest::mouseClick(&target, Qt::LeftButton, Qt::NoModifier, place);
}

void WindowTest::drawPath(const std::vector<QPointF>& points) {
    for (const QPointF& point : points)
        clickCanvas(point.x(), point.y());
    QMaskWidget& target = canvas();
    const QPointF last = points.back();
    QTest::mouseDClick(&target, Qt::LeftButton, Qt::NoModifier,
                       QPoint(qRound(last.x() * target.width()), qRound(last.y() * target.height())));
}

std::string WindowTest::status() {
    return find<QStatusBar>("statusBar").currentMessage().toStdString();
}

void WindowTest::loadExternal(const std::string& path) {
    choose("comboBox_file", "External");
    answers.typeFileName(QString::fromStdString(path));
    operate("Load");
}

// The user can choose operations only with an open source; this enables them for tests without one.
void WindowTest::operate(const std::string& operation) {
    find<QComboBox>("comboBox_operation").setEnabled(true);
    choose("comboBox_operation", operation);
}

void WindowTest::makeBackup(const std::string& backup, const std::map<std::string, std::string>& tracks) {
    const std::string made = folder.Path("being made");
    const std::string trackFolder = made + "/workspace/vdk/ContourPath";
    std::filesystem::create_directories(Utf8Path(trackFolder));
    std::filesystem::create_directories(Utf8Path(made + "/backup/workspaces"));
    WriteFile(made + "/backup/info.json", "{}");
    for (const auto& [name, content] : tracks)
        WriteFile(trackFolder + "/" + name, content);
    TarCompress(made + "/workspace", made + "/backup/workspaces/Workspace.osws", bAlloc_Application());
    TarCompress(made + "/backup", backup, bAlloc_Application());
    std::filesystem::remove_all(Utf8Path(made));
}

void WindowTest::loadBackup(const std::string& backup) {
    answers.typeFileName(QString::fromStdString(backup));
    click("pushButton_sensor");
}

void WindowTest::expectErrorBox(const std::string& text) {
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].title.toStdString(), "Error");
    EXPECT_EQ(boxes[0].shownText.toStdString(), text);
    EXPECT_EQ(boxes[0].icon, QMessageBox::Critical);
    EXPECT_EQ(boxes[0].buttons, QMessageBox::Ok);
}
