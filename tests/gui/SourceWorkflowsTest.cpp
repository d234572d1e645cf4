#include "SourceWorkflows.h"

#include <QElapsedTimer>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>

#include <filesystem>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace fs = std::filesystem;

TEST_F(SourceWorkflows, listsServersBeforeTheBackupFileAndInitialControlsAgree) {
    startServer();
    openWindow();
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("127.0.0.1", "Backup File"));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_EQ(uploadTip(), "Sync to server");
    EXPECT_TRUE(enabled("pushButton_sensor"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(status(), "");
}

TEST_F(SourceWorkflows, disconnectingClosesATrackOfTheWorkspace) {
    openConnected();
    loadAndEdit("b.trk");
    click("pushButton_sensor");
    EXPECT_EQ(status(), "Disconnect successfully.");
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), "Corvane");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    expectTrackClosed();
    operate("Save");
    expectErrorBox("Please load a track file firstly.");
}

TEST_F(SourceWorkflows, disconnectingKeepsAnExternalTrackOpen) {
    openConnected();
    WriteFile(folder.Path("mine.trk"), independent::TextFile(track));
    loadExternal(folder.Path("mine.trk"));
    click("pushButton_sensor");
    EXPECT_EQ(status(), "Disconnect successfully.");
    EXPECT_EQ(text("label_fileName"), "External - mine.trk");
    EXPECT_FALSE(canvas().pixmap(Qt::ReturnByValue).isNull());
    EXPECT_THAT(paths(), SizeIs(1));
}

TEST_F(SourceWorkflows, switchingToTheBackupFileWhileConnectedDisconnectsAndClears) {
    openConnected();
    loadAndEdit("b.trk");
    find<QComboBox>("comboBox_sensor").setEnabled(true);
    choose("comboBox_sensor", "Backup File");
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    EXPECT_EQ(uploadTip(), "Save to Backup File");
    EXPECT_EQ(title(), "Corvane");
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_THAT(paths(), IsEmpty());
    expectTrackClosed();
    choose("comboBox_sensor", "127.0.0.1");
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_EQ(uploadTip(), "Sync to server");
    connectToServer();
}

TEST_F(SourceWorkflows, switchingToAServerClosesAnOpenBackupFile) {
    startServer();
    openWindowAndListen();
    makeBackup(folder.Path("x.osbak"), {{"b.trk", independent::BinaryFile(track)}});
    choose("comboBox_sensor", "Backup File");
    loadBackup(folder.Path("x.osbak"));
    loadAndEdit("b.trk");
    choose("comboBox_sensor", "127.0.0.1");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), "Corvane");
    EXPECT_THAT(paths(), IsEmpty());
    expectTrackClosed();
    choose("comboBox_sensor", "Backup File");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
}

TEST_F(SourceWorkflows, changingTheSourceClosesAnExternalTrackToo) {
    openConnected();
    WriteFile(folder.Path("mine.trk"), independent::TextFile(track));
    loadExternal(folder.Path("mine.trk"));
    find<QComboBox>("comboBox_sensor").setEnabled(true);
    choose("comboBox_sensor", "Backup File");
    EXPECT_THAT(paths(), IsEmpty());
    expectTrackClosed();
    operate("Save");
    expectErrorBox("Please load a track file firstly.");
}

TEST_F(SourceWorkflows, slotSetsTheControlsForTheGivenSource) {
    startServer();
    openWindow();
    const auto callSlot = [this](const char* source) {
        ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "slot_comboBox_sensor_currentIndexChanged",
                                              Q_ARG(QString, QString::fromLatin1(source))));
    };
    callSlot("Backup File");
    EXPECT_EQ(uploadTip(), "Save to Backup File");
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    callSlot("127.0.0.1");
    EXPECT_EQ(uploadTip(), "Sync to server");
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
}

TEST_F(SourceWorkflows, closedTrackLeavesNothingToScroll) {
    openConnected();
    loadAndEdit("b.trk");
    find<QSlider>("horizontalSlider_resizeImage").setValue(80);
    window->resize(400, window->height());
    const auto& area = find<QScrollArea>("scrollArea");
    ASSERT_TRUE(QTest::qWaitFor([&area] { return area.horizontalScrollBar()->isVisible(); }));
    click("pushButton_sensor");
    expectTrackClosed();
    EXPECT_TRUE(QTest::qWaitFor([&area] { return !area.horizontalScrollBar()->isVisible(); }));
    EXPECT_FALSE(area.verticalScrollBar()->isVisible());
}

TEST_F(SourceWorkflows, closedTrackLeavesTheControlsWithoutEffect) {
    openConnected();
    loadAndEdit("b.trk");
    click("pushButton_sensor");
    expectTrackClosed();
    const QSize before = canvas().size();
    auto& slider = find<QSlider>("horizontalSlider_resizeImage");
    slider.setValue(slider.value() > 40 ? 10 : 70);
    EXPECT_EQ(canvas().size(), before);
    ASSERT_THAT(paths(), SizeIs(1));
    ASSERT_THAT(paths()[0].points, SizeIs(3));
    click("pushButton_deleteAll");
    click("pushButton_deleteLast");
    ASSERT_THAT(paths(), SizeIs(1));
    EXPECT_THAT(paths()[0].points, SizeIs(3));
    click("pushButton_getRuler");
    click("pushButton_getRuler"); // there is nothing to measure
    EXPECT_EQ(text("pushButton_getRuler"), "Hide Ruler");
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
}

TEST_F(SourceWorkflows, uploadsNeedASource) {
    openWindowAndListen();
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_FILE) Please open a backup file firstly."));
    closeWindow();
    startServer();
    openWindowAndListen();
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please connect to Ostra server or load a backup file firstly.");
    EXPECT_EQ(status(), "");
}

TEST_F(SourceWorkflows, resetRepeatsTheDiscovery) {
    openWindowAndListen();
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("Backup File"));
    startServer();
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("127.0.0.1", "Backup File"));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_EQ(uploadTip(), "Sync to server");
    EXPECT_EQ(title(), "Corvane");
}

TEST_F(SourceWorkflows, resetWhileConnectedDisconnectsAndClosesEverything) {
    openConnected();
    WriteFile(folder.Path("mine.trk"), independent::TextFile(track));
    loadExternal(folder.Path("mine.trk"));
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), "Corvane");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_THAT(paths(), IsEmpty());
    expectTrackClosed();
}

TEST_F(SourceWorkflows, startLeavesOldWorkingFiles) {
    fs::create_directories("TmpDirOsws/vdk/ContourPath");
    WriteFile("TmpDirOsws/vdk/ContourPath/left.trk", "");
    openWindow();
    EXPECT_TRUE(fs::exists("TmpDirOsws/vdk/ContourPath/left.trk"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(SourceWorkflows, constructionTakesLessThanASecond) {
    QElapsedTimer time;
    time.start();
    const MainWindow fresh;
    EXPECT_LT(time.elapsed(), 1000);
}

} // namespace
