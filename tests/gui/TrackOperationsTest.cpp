#include "TrackOperationsTest.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QScrollArea>
#include <QTextDocument>

#include <filesystem>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

namespace fs = std::filesystem;

TEST_F(TrackOperationsTest, slotRunsTheGivenOperation) {
    openWorkspace();
    const auto run = [this](const char* operation) {
        ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "on_comboBox_operation_currentIndexChanged",
                                              Q_ARG(QString, QString::fromLatin1(operation))));
    };
    choose("comboBox_file", "b.trk");
    run("Normal");
    EXPECT_EQ(text("label_fileName"), "");
    run("Load");
    EXPECT_EQ(text("label_fileName"), "b.trk");
    WriteFile(kTracks + "late.trk", "");
    run("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "late.trk", "External"));
    // The list of operations shows "Normal" throughout: there is no operation to report.
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
    expectNoBox();
}

TEST_F(TrackOperationsTest, statusStaysUntilReplaced) {
    operate("Refresh");
    QTest::qWait(50);
    EXPECT_EQ(status(), "Refresh successfully.");
}

TEST_F(TrackOperationsTest, oddNamesAreShownUnchanged) {
    const std::string odd = "a %s %n 'b' \"c\" <b>ß<i> 日本 [*].trk";
    makeBackup(folder.Path("x.osbak"), {{odd, independent::TextFile(track)}});
    loadBackup(folder.Path("x.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre(odd, "External"));
    loadFromWorkspace(odd);
    EXPECT_EQ(text("label_fileName"), odd);
    EXPECT_EQ(find<QLabel>("label_fileName").textFormat(), Qt::PlainText);
    edit();
    operate("Save");
    expectEdited(kTracks + odd);
    fs::remove(kTracks + odd);
    (void)log.Lines();
    operate("Delete");
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete " + kTracks + odd);
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_NOT_FOUND) Failed to delete " + kTracks + odd));
    const std::string external = "a %s %n 'b' <b>ß<i> 日本 [*].trk"; // the file dialog splits names at quotes
    WriteFile(folder.Path(external), independent::TextFile(track));
    loadExternal(folder.Path(external));
    EXPECT_EQ(text("label_fileName"), "External - " + external);
    WriteFile(folder.Path(external), "");
    (void)log.Lines();
    loadExternal(folder.Path(external));
    expectErrorBox("ERROR_TRACK - Failed to read basic information.");
}

TEST_F(TrackOperationsTest, longNamesKeepTheCanvasSizeAndCanBeDistinguished) {
    const std::string start = std::string(40, 'l') + " <b>&amp; station ";
    makeBackup(folder.Path("x.osbak"), {{start + "1.trk", independent::TextFile(track)},
                                        {start + "2.trk", independent::TextFile(track)}});
    const QSize windowSize = window->size();
    const int width = find<QScrollArea>("scrollArea").width();
    loadBackup(folder.Path("x.osbak"));
    loadFromWorkspace(start + "2.trk");
    QTest::qWait(50); // time for the window to grow, if it must
    EXPECT_EQ(window->size(), windowSize);
    EXPECT_EQ(find<QScrollArea>("scrollArea").width(), width);
    EXPECT_EQ(text("label_fileName"), start + "2.trk");
    const auto& list = find<QComboBox>("comboBox_file");
    const QString longest = QString::fromStdString(start + "2.trk");
    const int wanted = list.view()->fontMetrics().horizontalAdvance(longest);
    ASSERT_GT(wanted, list.width());
    EXPECT_GE(list.view()->minimumWidth(), wanted);
    QTextDocument tip; // as the tool tip reads it
    for (const char* widget : {"label_fileName", "comboBox_file"}) {
        tip.setHtml(find<QWidget>(widget).toolTip());
        EXPECT_EQ(tip.toPlainText(), longest) << widget;
    }
    WriteFile(kTracks + std::string(250, 'w') + ".trk", "");
    operate("Refresh");
    EXPECT_EQ(list.view()->minimumWidth(), 600); // no wider than a small screen
    EXPECT_EQ(list.view()->textElideMode(), Qt::ElideMiddle);
    click("toolButton_reset");
    EXPECT_EQ(find<QLabel>("label_fileName").toolTip(), QString());
}

} // namespace
