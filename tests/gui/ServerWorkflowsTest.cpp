#include "DiscoveryResponder.h"
#include "ScriptedServer.h"
#include "SourceWorkflows.h"
#include "TarBlocks.h"
#include "link/BlockingController.h"
#include "window/WaitingSpinnerWidget.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <filesystem>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The bar that points to the right starts 20 pixels from the centre, at every rotation of the ring.
void expectRingFromTwentyToForty(WaitingSpinnerWidget& spinner) {
    const QImage picture = spinner.grab().toImage();
    EXPECT_EQ(qAlpha(picture.pixel(40 + 18, 40)), 0);
    EXPECT_GT(qAlpha(picture.pixel(40 + 22, 40)), 0);
    EXPECT_GT(qAlpha(picture.pixel(40 + 37, 40)), 0);
}

/// A server as the source.
class ServerWorkflows : public SourceWorkflows {};

TEST_F(ServerWorkflows, connectingFetchesAndUnpacksTheWorkspace) {
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

TEST_F(ServerWorkflows, editedTrackReturnsToTheServer) {
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

TEST_F(ServerWorkflows, restoreKeepsTheReplayMode) {
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

TEST_F(ServerWorkflows, failedBackupAllowsConnectingAgain) {
    startServer({"--fault-status", "500", "--fault-path", "/system/commands/archive", "--fault-count", "1"});
    openWindowAndListen();
    click("pushButton_sensor");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to call the Backup request.");
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_REQUEST) Failed to call the Backup request."));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
    click("toolButton_upload"); // there is nothing of this server to send
    expectErrorBox("ERROR_FILE - Please connect to Ostra server or load a backup file firstly.");
    connectToServer();
    EXPECT_EQ(status(), "Connect successfully.");
    expectNoBox();
}

TEST_F(ServerWorkflows, neverSendsAnotherSourcesWorkspaceToAServerWhoseBackupFailed) {
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
    EXPECT_TRUE(fs::exists(Utf8Path(folder.Path("station/vdk/ContourPath/b.trk"))));
    EXPECT_EQ(FileContent(folder.Path("other.osbak")), before);
}

TEST_F(ServerWorkflows, serverWhoseBackupHasNoWorkspaceIsConnectedButNotOpen) {
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
    EXPECT_EQ(FileContent("TmpDirBackup/info.json"), "{}"); // the steps before the failure are kept
    EXPECT_THAT(messages, ElementsAre("Connecting to the sensor ..."));
    EXPECT_EQ(text("pushButton_sensor"), "Connect Sensor");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(title(), before);
}

TEST_F(ServerWorkflows, serversBackupReplacesAnOpenBackupFile) {
    makeBackup("Ostra.osbak", {{"b.trk", independent::BinaryFile(track)}});
    makeBackup(folder.Path("mine.osbak"), {{"a.trk", ""}});
    openWindow();
    loadBackup(folder.Path("mine.osbak"));
    qRegisterMetaType<Ve::Exception>("Ve::Exception");
    ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "SlotProcessBackup",
                                          Q_ARG(Ve::Exception, Ve::Exception(1)))); // the user cannot do this
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    EXPECT_EQ(status(), "Load backup file successfully."); // the button reads "Load Backup"
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
}

TEST_F(ServerWorkflows, stoppedServerCannotBeConnected) {
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

TEST_F(ServerWorkflows, killedServerIsReportedAndTheConnectionStateStays) {
    openConnected();
    server->Kill();
    click("toolButton_upload");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to get the status of the replay mode.");
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    click("pushButton_sensor"); // with any result the window continues
    (void)answers.takeBoxes();
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("Backup File"));
}

TEST_F(ServerWorkflows, serverWithoutTheTrackFolderGivesAnEmptyList) {
    fs::remove_all(Utf8Path(folder.Path("station/vdk/ContourPath")));
    openConnected();
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_TRUE(enabled("comboBox_operation"));
}

TEST_F(ServerWorkflows, serversBackupThatCannotBePackedIsNotSent) {
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

TEST_F(ServerWorkflows, reportsAnIndexWithoutAServer) {
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

TEST_F(ServerWorkflows, windowCannotCloseWhileTheWorkerUsesTheClient) {
    startServer({"--fault-delay", "400", "--fault-path", "/system/commands/archive"});
    openWindowAndListen();
    click("pushButton_sensor");
    ASSERT_FALSE(window->isEnabled());
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(text("label_state"), "Cannot close while the server is at work");
    int beats = 0; // the window processes events during the request
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, window.get(), [&beats] { ++beats; });
    heartbeat.start(20);
    awaitWorker();
    EXPECT_GE(beats, 5);
    EXPECT_EQ(status(), "Connect successfully.");
    EXPECT_EQ(text("label_state"), "");
    EXPECT_TRUE(window->close());
}

TEST_F(ServerWorkflows, destroyingTheWindowWaitsForTheWorker) {
    startServer({"--fault-delay", "300", "--fault-path", "/system/commands/archive"});
    openWindowAndListen();
    click("pushButton_sensor");
    QElapsedTimer time;
    time.start();
    closeWindow();
    EXPECT_LT(time.elapsed(), 10000);
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
}

TEST_F(ServerWorkflows, closingWhileConnectedRemovesTheWorkingFiles) {
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

TEST_F(ServerWorkflows, closingAfterTheServerStoppedDoesNotThrow) {
    openConnected();
    server->Kill();
    closeWindow();
    EXPECT_FALSE(fs::exists("TmpDirBackup"));
    expectNoBox();
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

} // namespace
