#include "SourceWorkflows.h"
#include "DiscoveryResponder.h"
#include "ScriptedServer.h"
#include "TarBlocks.h"
#include "link/BlockingController.h"
#include "link/FileUtils.h"
#include "link/WorkerThread.h"
#include "window/WaitingSpinnerWidget.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

#include <cerrno>
#include <filesystem>
#include <optional>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

bool socketsFail = false;

/// While it lives, no socket can be had.
class NoSockets {
  public:
    NoSockets() { socketsFail = true; }
    NoSockets(const NoSockets&) = delete;
    NoSockets& operator=(const NoSockets&) = delete;
    ~NoSockets() { socketsFail = false; }
};

/// The bar that points to the right starts 20 pixels from the middle, wherever the ring has turned to.
void expectRingFromTwentyToForty(WaitingSpinnerWidget& spinner) {
    const QImage picture = spinner.grab().toImage();
    EXPECT_EQ(qAlpha(picture.pixel(40 + 18, 40)), 0);
    EXPECT_GT(qAlpha(picture.pixel(40 + 22, 40)), 0);
    EXPECT_GT(qAlpha(picture.pixel(40 + 37, 40)), 0);
}

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

TEST_F(SourceWorkflows, failedDiscoveryIsReportedAndLeavesAnEmptyList) {
    auto none = std::make_optional<NoSockets>();
    answers.note = [&none] {
        none.reset();
        return QString();
    };
    openWindow();
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_EQ(boxes[0].title, QStringLiteral("Error"));
    EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr("ERROR_CONNECTION - "));
    const std::vector<std::string> lines = log.Lines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0], "INFO: Starting Corvane.");
    EXPECT_THAT(lines[1], HasSubstr("ERROR: (ERROR_CONNECTION) "));
    EXPECT_THAT(items("comboBox_sensor"), IsEmpty());
    EXPECT_FALSE(enabled("pushButton_sensor"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(SourceWorkflows, connectingFetchesAndUnpacksTheWorkspace) {
    startServer();
    openWindowAndListen();
    click("pushButton_sensor");
    EXPECT_FALSE(window->isEnabled());
    EXPECT_EQ(status(), "Connecting to the sensor ...");
    auto* const spinner = window->findChild<WaitingSpinnerWidget*>();
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_EQ(spinner->size(), QSize(80, 80));
    EXPECT_EQ(spinner->windowModality(), Qt::WindowModal);
    expectRingFromTwentyToForty(*spinner);
    EXPECT_EQ(spinner->pos(), QPoint(window->x() + static_cast<int>(window->width() * 0.5 - 40),
                                     window->y() + static_cast<int>(window->height() * 0.5 - 40)));
    awaitWorker();
    EXPECT_THAT(messages, ElementsAre("Connecting to the sensor ...", "Connect successfully."));
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    EXPECT_FALSE(enabled("comboBox_sensor"));
    EXPECT_TRUE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), "Corvane - Sensor - 127.0.0.1");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    EXPECT_TRUE(fs::exists("Ostra.osbak"));
    EXPECT_TRUE(fs::exists("TmpDirBackup/workspaces/Workspace.osws"));
    EXPECT_THAT(server->Calls(), Contains("POST /system/commands/archive"));
    EXPECT_FALSE(spinner->isVisible());
    expectNoBox();
}

TEST_F(SourceWorkflows, editedTrackReturnsToTheServer) {
    openConnected();
    loadAndEdit("b.trk");
    EXPECT_EQ(firstLength(folder.Path("station/vdk/ContourPath/b.trk")), 100);
    messages.clear();
    click("toolButton_upload");
    EXPECT_FALSE(window->isEnabled());
    awaitWorker();
    EXPECT_THAT(messages, ElementsAre("Restoring the sensor ...", "Restoring successfully."));
    EXPECT_EQ(firstLength(folder.Path("station/vdk/ContourPath/b.trk")), 33);
    EXPECT_EQ(FileContent(folder.Path("station/vdk/settings.json")), "{}");
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    expectNoBox();
}

TEST_F(SourceWorkflows, restoreKeepsTheReplayMode) {
    startServer({"--replay", "on", "--restore-sets-replay", "off"});
    openWindowAndListen();
    connectToServer();
    click("toolButton_upload");
    awaitWorker();
    EXPECT_EQ(status(), "Restoring successfully.");
    std::vector<std::string> calls = server->Calls();
    ASSERT_GE(calls.size(), 4U);
    EXPECT_THAT(std::vector<std::string>(calls.end() - 4, calls.end()),
                ElementsAre("GET /replay/playback", "POST /system/commands/restore", "GET /replay/playback",
                            "PUT /replay/playback"));
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
    const auto tell = [this](const char* source) {
        ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "slot_comboBox_sensor_currentIndexChanged",
                                              Q_ARG(QString, QString::fromLatin1(source))));
    };
    tell("Backup File");
    EXPECT_EQ(uploadTip(), "Save to Backup File");
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    tell("127.0.0.1");
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

TEST(WorkerThread, hasTheHighestPriorityAndDeletesItsController) {
    OstraSdkClient client;
    WorkerThread worker(client);
    const QPointer<BlockingController> controller = &worker.controller();
    worker.start();
    EXPECT_EQ(controller->thread()->priority(), QThread::TimeCriticalPriority);
    EXPECT_NE(controller->thread(), QThread::currentThread());
    worker.finish();
    EXPECT_TRUE(controller.isNull());
}

TEST_F(SourceWorkflows, failedBackupAllowsConnectingAgain) {
    startServer({"--fault-status", "500", "--fault-path", "/system/commands/archive", "--fault-count", "1"});
    openWindowAndListen();
    click("pushButton_sensor");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to call the Backup request.");
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_REQUEST) Failed to call the Backup request."));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
    click("toolButton_upload"); // nothing of this server is here to be sent
    expectErrorBox("ERROR_FILE - Please connect to Ostra server or load a backup file firstly.");
    connectToServer();
    EXPECT_EQ(status(), "Connect successfully.");
    expectNoBox();
}

TEST_F(SourceWorkflows, neverSendsAnotherSourcesWorkspaceToAServerWhoseBackupFailed) {
    startServer({"--fault-status", "500", "--fault-path", "/system/commands/archive"});
    openWindowAndListen();
    makeBackup(folder.Path("other.osbak"), {{"other.trk", "x"}});
    choose("comboBox_sensor", "Backup File");
    loadBackup(folder.Path("other.osbak"));
    ASSERT_EQ(status(), "Load backup file successfully.");
    const std::string before = FileContent(folder.Path("other.osbak"));
    choose("comboBox_sensor", "127.0.0.1");
    click("pushButton_sensor");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to call the Backup request.");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please connect to Ostra server or load a backup file firstly.");
    EXPECT_TRUE(fs::exists(folder.Path("station/vdk/ContourPath/b.trk")));
    EXPECT_EQ(FileContent(folder.Path("other.osbak")), before);
}

TEST_F(SourceWorkflows, serverWhoseBackupHasNoWorkspaceIsConnectedButNotOpen) {
    ScriptedServer bare({{"/system/info", JsonReply("{}")},
                         {"/system/commands/archive", DataReply(TarFile("info.json", "{}") + TarEnd())}});
    const DiscoveryResponder found({DiscoveryAnswer(1, "127.0.0.1", bare.Port())});
    qputenv("OSTRA_DISCOVERY", found.Target().c_str());
    openWindowAndListen();
    ASSERT_EQ(text("pushButton_sensor"), "Connect Sensor");
    const std::string before = title();
    click("pushButton_sensor");
    awaitWorker();
    expectErrorBox("ERROR_NOT_FOUND - ./TmpDirBackup/workspaces/Workspace.osws doesn't exist.");
    EXPECT_EQ(FileContent("TmpDirBackup/info.json"), "{}"); // what was done before stays done
    EXPECT_THAT(messages, ElementsAre("Connecting to the sensor ..."));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), before);
}

TEST_F(SourceWorkflows, serversBackupReplacesAnOpenBackupFile) {
    makeBackup("Ostra.osbak", {{"b.trk", independent::BinaryFile(track)}});
    makeBackup(folder.Path("mine.osbak"), {{"a.trk", ""}});
    openWindow();
    loadBackup(folder.Path("mine.osbak"));
    qRegisterMetaType<Ve::Exception>("Ve::Exception");
    ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "SlotProcessBackup",
                                          Q_ARG(Ve::Exception, Ve::Exception(1)))); // no hand can do this
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    EXPECT_EQ(status(), "Load backup file successfully."); // the button reads "Load Backup"
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
}

TEST_F(SourceWorkflows, stoppedServerCannotBeConnected) {
    startServer();
    openWindowAndListen();
    server->Kill();
    click("pushButton_sensor");
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr(" - Failed to connect the OstraServer (127.0.0.1)."));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_EQ(status(), "");
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(SourceWorkflows, killedServerIsReportedAndTheConnectionStateStays) {
    openConnected();
    server->Kill();
    click("toolButton_upload");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to get the status of the replay mode.");
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    click("pushButton_sensor"); // whatever it says, the window goes on
    (void)answers.takeBoxes();
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("Backup File"));
}

TEST_F(SourceWorkflows, serverWithoutTheTrackFolderGivesAnEmptyList) {
    fs::remove_all(folder.Path("station/vdk/ContourPath"));
    openConnected();
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_TRUE(enabled("comboBox_operation"));
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

TEST_F(SourceWorkflows, opensEditsAndSavesABackupFileInPlace) {
    makeBackup(folder.Path("my station.osbak"), {{"b.trk", independent::BinaryFile(track)}});
    openWindowAndListen();
    loadBackup(folder.Path("my station.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_EQ(title(), "Corvane - Backup File - " + folder.Path("my station.osbak"));
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_TRUE(enabled("comboBox_operation"));
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please select a Ostra backup file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("Ostra (*.osbak)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), fs::current_path().string());
    loadAndEdit("b.trk");
    messages.clear();
    click("toolButton_upload");
    EXPECT_THAT(messages, ElementsAre("Saving the backup file...", "Saved the backup file successfully."));
    TarUncompress(folder.Path("my station.osbak"), folder.Path("out"), bAlloc_Application());
    TarUncompress(folder.Path("out/workspaces/Workspace.osws"), folder.Path("ws"), bAlloc_Application());
    EXPECT_EQ(firstLength(folder.Path("ws/vdk/ContourPath/b.trk")), 33);
    EXPECT_EQ(FileContent(folder.Path("out/info.json")), "{}");
    expectNoBox();
}

TEST_F(SourceWorkflows, realStationsBackupIsOpenedEditedAndPacked) {
    fs::copy(TestData("station.osbak"), folder.Path("station.osbak"));
    openWindowAndListen();
    loadBackup(folder.Path("station.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("Fault-binary.trk", "fault.trk", "External"));
    loadAndEdit("fault.trk");
    click("toolButton_upload");
    EXPECT_EQ(status(), "Saved the backup file successfully.");
    click("toolButton_reset");
    loadBackup(folder.Path("station.osbak"));
    choose("comboBox_file", "fault.trk");
    choose("comboBox_operation", "Load");
    ASSERT_THAT(paths(), SizeIs(2));
    EXPECT_THAT(paths()[0].lengths, ElementsAre(33, 60, 80, 100));
    EXPECT_THAT(paths()[1].spaces, ElementsAre(25, 25, 25));
    expectNoBox();
}

TEST_F(SourceWorkflows, titleShowsAnOddPathUnchanged) {
    const std::string odd = folder.Path("a [*] %1 <b>.osbak");
    makeBackup(odd, {});
    openWindow();
    loadBackup(odd);
    EXPECT_EQ(window->windowHandle()->title().toStdString(), "Corvane - Backup File - " + odd);
}

TEST_F(SourceWorkflows, cancelledLoadBackupChangesNothing) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindowAndListen();
    loadBackup("");
    EXPECT_EQ(status(), "");
    EXPECT_FALSE(enabled("comboBox_operation"));
    loadBackup(folder.Path("x.osbak"));
    loadBackup("");
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    EXPECT_EQ(title(), "Corvane - Backup File - " + folder.Path("x.osbak"));
    click("toolButton_upload"); // the path is lost
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
}

TEST_F(SourceWorkflows, backupWithoutAWorkspaceIsReportedAfterTheFirstUnpacking) {
    fs::create_directories(folder.Path("made/workspaces"));
    WriteFile(folder.Path("made/info.json"), "{}");
    TarCompress(folder.Path("made"), folder.Path("bare.osbak"), bAlloc_Application());
    openWindowAndListen();
    loadBackup(folder.Path("bare.osbak"));
    expectErrorBox("ERROR_NOT_FOUND - ./TmpDirBackup/workspaces/Workspace.osws doesn't exist.");
    EXPECT_TRUE(fs::exists("TmpDirBackup/info.json"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(status(), "");
    EXPECT_EQ(title(), "MainWindow");
    click("toolButton_upload"); // half a backup is none
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
    WriteFile(folder.Path("empty.osbak"), "");
    loadBackup(folder.Path("empty.osbak"));
    EXPECT_THAT(answers.takeBoxes(), SizeIs(1));
    makeBackup(folder.Path("good.osbak"), {{"b.trk", ""}});
    loadBackup(folder.Path("good.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
}

TEST_F(SourceWorkflows, workspaceWithoutTracksGivesAnEmptyList) {
    fs::create_directories(folder.Path("made/workspaces"));
    fs::create_directories(folder.Path("ws/other"));
    TarCompress(folder.Path("ws"), folder.Path("made/workspaces/Workspace.osws"), bAlloc_Application());
    TarCompress(folder.Path("made"), folder.Path("bare.osbak"), bAlloc_Application());
    openWindowAndListen();
    loadBackup(folder.Path("bare.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(SourceWorkflows, backupThatCannotBePackedStaysUnchanged) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindowAndListen();
    loadBackup(folder.Path("x.osbak"));
    const std::string before = FileContent(folder.Path("x.osbak"));
    fs::remove_all("TmpDirOsws");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - ./TmpDirOsws is not a directory.");
    EXPECT_EQ(FileContent(folder.Path("x.osbak")), before);
    EXPECT_EQ(status(), "Saving the backup file...");
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(SourceWorkflows, serversBackupThatCannotBePackedIsNotSent) {
    openConnected();
    const std::string before = FileContent("Ostra.osbak");
    fs::remove_all("TmpDirOsws");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - ./TmpDirOsws is not a directory.");
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(status(), "Connect successfully.");
    EXPECT_EQ(FileContent("Ostra.osbak"), before);
    EXPECT_THAT(server->Calls(), Not(Contains("POST /system/commands/restore")));
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
}

TEST_F(SourceWorkflows, reportsAnIndexWithoutAServer) {
    startServer();
    openWindowAndListen();
    auto& sources = find<QComboBox>("comboBox_sensor");
    sources.setItemText(1, QStringLiteral("10.0.0.8")); // as many as there are servers, and one more
    sources.addItem(QStringLiteral("10.0.0.9"));
    for (const char* address : {"10.0.0.8", "10.0.0.9"}) {
        choose("comboBox_sensor", address);
        click("pushButton_sensor");
        expectErrorBox("ERROR_NOT_CONNECTED - Please select a sensor server.");
        EXPECT_EQ(status(), "");
    }
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

TEST_F(SourceWorkflows, failedResetDisablesTheButtonUntilOneSucceeds) {
    openWindowAndListen();
    auto none = std::make_optional<NoSockets>();
    answers.note = [this, &none] {
        none.reset();
        return enabled("pushButton_sensor") ? QStringLiteral("enabled") : QStringLiteral("disabled");
    };
    click("toolButton_reset");
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr("ERROR_CONNECTION - "));
    EXPECT_EQ(boxes[0].underneath, QStringLiteral("disabled"));
    EXPECT_FALSE(enabled("pushButton_sensor"));
    EXPECT_EQ(status(), "");
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_TRUE(enabled("pushButton_sensor"));
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
}

TEST_F(SourceWorkflows, closingWhileConnectedRemovesTheWorkingFiles) {
    openConnected();
    ASSERT_TRUE(fs::exists("TmpDirBackup"));
    ASSERT_TRUE(fs::exists("TmpDirOsws"));
    ASSERT_TRUE(fs::exists("Ostra.osbak"));
    EXPECT_TRUE(window->close());
    closeWindow();
    EXPECT_FALSE(fs::exists("TmpDirBackup"));
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
    expectNoBox();
}

TEST_F(SourceWorkflows, closingAfterTheServerStoppedDoesNotThrow) {
    openConnected();
    server->Kill();
    closeWindow();
    EXPECT_FALSE(fs::exists("TmpDirBackup"));
    expectNoBox();
}

TEST_F(SourceWorkflows, closingABackupFileKeepsTheFile) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    const std::string before = FileContent(folder.Path("x.osbak"));
    openWindow();
    loadBackup(folder.Path("x.osbak"));
    closeWindow();
    EXPECT_EQ(FileContent(folder.Path("x.osbak")), before);
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
}

TEST_F(SourceWorkflows, namesLinksThatTheNextSaveLeavesOut) {
    const std::string workspace =
        TarFolder("vdk") + TarFolder("vdk/ContourPath") + TarFile("vdk/ContourPath/b.trk", "") +
        TarLink("vdk/ContourPath/hard.trk", '1', "vdk/ContourPath/b.trk") +
        TarLink("vdk/ContourPath/soft.trk", '2', "b.trk") + TarLink("vdk/pipe", '6', "") + TarEnd();
    WriteFile(folder.Path("links.osbak"),
              TarFolder("workspaces") + TarFile("workspaces/Workspace.osws", workspace) + TarEnd());
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindow();
    loadBackup(folder.Path("links.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), testing::IsSupersetOf({"b.trk", "hard.trk"}));
    EXPECT_EQ(text("label_state"), "Links left out");
    EXPECT_THAT(find<QLabel>("label_state").toolTip().toStdString(),
                testing::HasSubstr("Links left out: vdk/ContourPath/soft.trk, vdk/pipe"));
    EXPECT_THAT(log.Lines(),
                testing::Contains(testing::HasSubstr("INFO: Links and special files left out of "
                                                     "./TmpDirBackup/workspaces/Workspace.osws: 2 "
                                                     "(vdk/ContourPath/soft.trk, vdk/pipe)")));
    loadBackup(folder.Path("x.osbak"));
    EXPECT_EQ(text("label_state"), "");
    EXPECT_THAT(find<QLabel>("label_state").toolTip().toStdString(),
                testing::Not(testing::HasSubstr("left out")));
    loadBackup(folder.Path("links.osbak"));
    click("toolButton_reset");
    EXPECT_EQ(text("label_state"), "");
    expectNoBox();
}

TEST_F(SourceWorkflows, startLeavesOldWorkingFiles) {
    fs::create_directories("TmpDirOsws/vdk/ContourPath");
    WriteFile("TmpDirOsws/vdk/ContourPath/left.trk", "");
    openWindow();
    EXPECT_TRUE(fs::exists("TmpDirOsws/vdk/ContourPath/left.trk"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(SourceWorkflows, windowCannotCloseWhileTheWorkerUsesTheClient) {
    startServer({"--fault-delay", "400", "--fault-path", "/system/commands/archive"});
    openWindowAndListen();
    click("pushButton_sensor");
    ASSERT_FALSE(window->isEnabled());
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(text("label_state"), "Cannot close while the server is at work");
    int beats = 0; // the interface lives on meanwhile
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, window.get(), [&beats] { ++beats; });
    heart.start(20);
    awaitWorker();
    EXPECT_GE(beats, 5);
    EXPECT_EQ(status(), "Connect successfully.");
    EXPECT_EQ(text("label_state"), "");
    EXPECT_TRUE(window->close());
}

TEST_F(SourceWorkflows, destroyingTheWindowWaitsForTheWorker) {
    startServer({"--fault-delay", "300", "--fault-path", "/system/commands/archive"});
    openWindowAndListen();
    click("pushButton_sensor");
    QElapsedTimer time;
    time.start();
    closeWindow();
    EXPECT_LT(time.elapsed(), 10000);
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
}

TEST_F(SourceWorkflows, constructionTakesLessThanASecond) {
    QElapsedTimer time;
    time.start();
    const MainWindow fresh;
    EXPECT_LT(time.elapsed(), 1000);
}

} // namespace

// Takes the place of the system library's for this program.
extern "C" int socket(int domain, int type, int protocol) noexcept {
    if (socketsFail) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_socket, domain, type, protocol));
}
