#include "WindowOperator.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QStatusBar>

#include <utility>

WindowOperator::WindowOperator() {
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        throw std::runtime_error("the window does not show");
}

void WindowOperator::Choose(const char* name, const std::string& text) {
    auto& combo = Find<QComboBox>(name);
    const QString item = QString::fromStdString(text);
    QAbstractItemView* const list = combo.view();
    combo.setFocus(); // as a click or Tab does
    QTest::keyClick(&combo, Qt::Key_Space);
    if (!Await([list] { return list->isVisible(); }))
        throw std::runtime_error(std::string(name) + " does not open");
    QTest::keyClick(list, Qt::Key_Home);
    for (int step = 0; step < combo.count() && list->currentIndex().data().toString() != item; ++step)
        QTest::keyClick(list, Qt::Key_Down);
    const bool reached = list->currentIndex().data().toString() == item;
    QTest::keyClick(list, reached ? Qt::Key_Return : Qt::Key_Escape);
    if (!reached)
        throw std::runtime_error(std::string(name) + " has no " + text);
}

void WindowOperator::Click(const char* button) {
    auto& widget = Find<QWidget>(button);
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, widget.height() / 2));
}

void WindowOperator::Type(const char* lineEdit, const std::string& text) {
    auto& field = Find<QLineEdit>(lineEdit);
    QTest::mouseClick(&field, Qt::LeftButton);
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, QString::fromStdString(text));
}

void WindowOperator::LoadBackup(const std::string& backup) {
    if (Text("pushButton_sensor") != "Load Backup")
        Choose("comboBox_sensor", "Backup File");
    NameFile(backup);
    Click("pushButton_sensor");
}

void WindowOperator::LoadTrack(const std::string& name) {
    Choose("comboBox_file", name);
    Choose("comboBox_operation", "Load");
    Expect("Load successfully.");
}

void WindowOperator::LoadExternal(const std::string& path) {
    Choose("comboBox_file", "External");
    NameFile(path);
    Choose("comboBox_operation", "Load");
    Expect("Load successfully.");
}

void WindowOperator::Edit() {
    Type("lineEdit_lineLength", "33");
}

std::string WindowOperator::Status() {
    return Find<QStatusBar>("statusBar").currentMessage().toStdString();
}

void WindowOperator::ClearStatus() {
    Find<QStatusBar>("statusBar").clearMessage();
}

std::string WindowOperator::Text(const char* widget) {
    return Find<QWidget>(widget).property("text").toString().toStdString();
}

std::vector<std::string> WindowOperator::TakeErrors() {
    return HasErrors() ? std::exchange(errors, {}) : std::vector<std::string>();
}

bool WindowOperator::HasErrors() {
    for (const SeenBox& box : answers.takeBoxes())
        if (box.title == QLatin1String("Error") && box.icon == QMessageBox::Critical)
            errors.push_back(box.shownText.toStdString());
    return !errors.empty();
}

void WindowOperator::Expect(const std::string& status) {
    if (Status() == status)
        return;
    std::string shown = "expected \"" + status + "\", but the status is \"" + Status() + "\"";
    for (const std::string& error : TakeErrors())
        shown += ", box: " + error;
    throw std::runtime_error(shown);
}
