#include "StressWindow.h"

#include "EditingChecks.h"

#include <QApplication>

#include <cstdio>

namespace {

constexpr int kTimeOut = 60000; ///< milliseconds, for the worker
constexpr std::size_t kRemembered = 30;

} // namespace

void StressWindow::begin(const std::string& event) {
    events.push_back(event);
    if (events.size() > kRemembered)
        events.pop_front();
}

std::string StressWindow::lastEvents() const {
    std::string text;
    for (const std::string& event : events)
        text += event + "; ";
    return text;
}

void StressWindow::printCounts() const {
    for (const auto& [what, times] : counts)
        std::printf("  %7u  %s\n", times, what.c_str());
}

void StressWindow::settle() {
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->isEnabled(); }, kTimeOut)) << "the worker hangs";
    countStatus();
    check();
}

void StressWindow::check() {
    // Without a picture nothing is painted and the ruler is not computed.
    CheckEditing(canvas(), window->rulerShown() && hasTrack());
    checkWindow();
    checkBoxes();
}

void StressWindow::checkWindow() {
    EXPECT_GT(canvas().width(), 0);
    EXPECT_GT(canvas().height(), 0);
    EXPECT_EQ(find<QComboBox>("comboBox_operation").currentIndex(), 0);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    const bool fromFile = find<QComboBox>("comboBox_sensor").currentText() == QStringLiteral("Backup File");
    EXPECT_EQ(text("pushButton_sensor") == "Load Backup", fromFile);
    EXPECT_EQ(find<QComboBox>("comboBox_sensor").isEnabled(),
              window->isEnabled() && text("pushButton_sensor") != "Disconnect Sensor");
}

void StressWindow::checkBoxes() {
    for (const SeenBox& box : answers.takeBoxes()) {
        EXPECT_EQ(box.title.toStdString(), "Error");
        EXPECT_EQ(box.shownText, box.text);
        EXPECT_TRUE(IsKnownMessage(box.text.toStdString())) << box.text.toStdString();
        std::string kind = box.text.toStdString();
        kind = kind.substr(kind.find(" - ") == std::string::npos ? 0 : kind.find(" - ") + 3);
        count("  box: " + kind.substr(0, 40));
    }
}
