// Connections whose disconnect fails, the server that a connection uses, and the
// window when discovery fails. The linker replaces the real functions by those of this file,
// for this program only (see --wrap in CMakeLists.txt).

#include "OrdinaryUser.h"
#include "SourceWorkflows.h"
#include "basalt/bStatus.h"
#include "ostrasdk/VeSystem.h"

#include <QEvent>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <vector>

void WatchedDisconnect(OstraSdk::VeSystem*) __asm__("__wrap__ZN8OstraSdk8VeSystem10DisconnectEv");
void RealDisconnect(OstraSdk::VeSystem*) __asm__("__real__ZN8OstraSdk8VeSystem10DisconnectEv");

using ServerList = std::vector<OstraServerInfo>;
void WatchedDiscovery(ServerList&) __asm__(
    "__wrap__ZN14OstraSdkClient20DiscoverOstraServersERSt6vectorI15OstraServerInfoSaIS1_EE");
void RealDiscovery(ServerList&) __asm__(
    "__real__ZN14OstraSdkClient20DiscoverOstraServersERSt6vectorI15OstraServerInfoSaIS1_EE");

namespace {

/// Called whenever a connection is ended.
std::function<void()> onDisconnect;
/// Called on every discovery.
std::function<void()> onDiscovery;

} // namespace

void WatchedDiscovery(ServerList& list) {
    if (onDiscovery)
        onDiscovery();
    RealDiscovery(list);
}

void WatchedDisconnect(OstraSdk::VeSystem* system) {
    if (onDisconnect)
        onDisconnect();
    RealDisconnect(system);
}

namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Not;

namespace fs = std::filesystem;

const std::string kFailure = "ERROR_CONNECTION - Failed to disconnect the OstraServer (127.0.0.1)";

class SourceConnections : public SourceWorkflows {
  protected:
    void TearDown() override {
        onDisconnect = {};
        onDiscovery = {};
        SourceWorkflows::TearDown();
    }

    static void failToDisconnect() {
        onDisconnect = [] {
            throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, "VeSystem::Disconnect",
                                "The test wants it so.");
        };
    }
};

TEST_F(SourceConnections, failedDiscoveryIsLoggedThenShownAndCanBeRepeated) {
    onDiscovery = [] {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_REQUEST, "Discovery", "%s", "No <b>%d</b> servers.");
    };
    std::vector<std::string> loggedBefore;
    answers.note = [this, &loggedBefore] {
        loggedBefore = log.Lines();
        return QString();
    };
    openWindow();
    expectErrorBox("ERROR_REQUEST - No <b>%d</b> servers.");
    EXPECT_THAT(loggedBefore,
                ElementsAre("INFO: Starting Corvane.", "ERROR: (ERROR_REQUEST) No <b>%d</b> servers."));
    EXPECT_TRUE(items("comboBox_sensor").empty());
    EXPECT_FALSE(enabled("pushButton_sensor"));
    onDiscovery = {};
    click("toolButton_reset");
    EXPECT_THAT(items("comboBox_sensor"), ElementsAre("Backup File"));
    EXPECT_TRUE(enabled("pushButton_sensor"));
}

TEST_F(SourceConnections, otherExceptionDuringDiscoveryEndsTheConstruction) {
    onDiscovery = [] { throw std::runtime_error("The test wants it so."); };
    EXPECT_THROW({ const MainWindow fresh; }, std::runtime_error);
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Starting Corvane."));
    expectNoBox();
}

TEST_F(SourceConnections, closingDisconnectsBeforeRemovingTheWorkingFiles) {
    openConnected();
    int calls = 0;
    onDisconnect = [&calls] {
        ++calls;
        for (const char* name : {"TmpDirBackup", "TmpDirOsws", "Ostra.osbak"})
            EXPECT_TRUE(fs::exists(name)) << name;
    };
    closeWindow();
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
}

TEST_F(SourceConnections, closingDisconnectsOnlyWhenTheButtonSaysConnected) {
    startServer({"--fault-status", "500", "--fault-path", "/system/commands/archive"});
    openWindow();
    click("pushButton_sensor");
    awaitWorker();
    expectErrorBox("ERROR_REQUEST - Failed to call the Backup request.");
    int calls = 0;
    onDisconnect = [&calls] { ++calls; };
    closeWindow();
    EXPECT_EQ(calls, 0);
}

TEST_F(SourceConnections, failedDisconnectOnClosingIsLoggedAndTheFilesAreRemovedAnyway) {
    openConnected();
    failToDisconnect();
    (void)log.Lines();
    closeWindow();
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: (ERROR_CONNECTION) Failed to disconnect the OstraServer "
                                         "(127.0.0.1)"));
    for (const char* name : {"TmpDirBackup", "TmpDirOsws", "Ostra.osbak"})
        EXPECT_FALSE(fs::exists(name)) << name;
    expectNoBox();
}

TEST_F(SourceConnections, unremovableWorkingFolderIsLoggedAndTheOthersAreRemoved) {
    openConnected();
    (void)log.Lines();
    const fs::path closed = "TmpDirBackup/closed";
    fs::create_directories(closed / "inner");
    fs::permissions(closed, fs::perms::none);
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        closeWindow();
    }
    fs::permissions(closed, fs::perms::owner_all);
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_FILE) Failed to delete ./TmpDirBackup"));
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
    expectNoBox();
}

TEST_F(SourceConnections, failedDisconnectLeavesTheServerOpen) {
    openConnected();
    loadAndEdit("b.trk");
    failToDisconnect();
    click("pushButton_sensor");
    expectErrorBox(kFailure);
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    EXPECT_FALSE(enabled("comboBox_sensor"));
    EXPECT_TRUE(enabled("comboBox_operation"));
    EXPECT_EQ(status(), "Save successfully.");
    EXPECT_EQ(text("label_fileName"), "b.trk");
    EXPECT_EQ(title(), "Corvane - Sensor - 127.0.0.1");
    onDisconnect = {};
    click("pushButton_sensor");
    EXPECT_EQ(status(), "Disconnect successfully.");
}

TEST_F(SourceConnections, resetThatCannotDisconnectDisablesTheButtonAndStops) {
    openConnected();
    loadAndEdit("b.trk");
    failToDisconnect();
    click("toolButton_reset");
    expectErrorBox(kFailure);
    EXPECT_FALSE(enabled("pushButton_sensor"));
    EXPECT_EQ(status(), "Save successfully.");
    EXPECT_EQ(text("label_fileName"), "b.trk");
    EXPECT_FALSE(enabled("comboBox_sensor"));
}

TEST_F(SourceConnections, sourceChangeThatCannotDisconnectStops) {
    openConnected();
    find<QComboBox>("comboBox_sensor").setEnabled(true);
    failToDisconnect();
    choose("comboBox_sensor", "Backup File");
    expectErrorBox(kFailure);
    EXPECT_EQ(uploadTip(), "Save to Backup File");
    EXPECT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    EXPECT_EQ(title(), "Corvane - Sensor - 127.0.0.1");
    EXPECT_TRUE(enabled("comboBox_operation"));
}

TEST_F(SourceConnections, connectsToTheSelectedServersAddressAndPort) {
    startServer();
    std::filesystem::copy(Utf8Path(folder.Path("station")), Utf8Path(folder.Path("station two")),
                          std::filesystem::copy_options::recursive);
    OstraServerProcess other(folder.Path("station two"), {"--address", "127.0.0.2", "--serial", "100002"});
    qputenv("OSTRA_DISCOVERY",
            (server->DiscoveryAddress() + ",127.0.0.2:" + std::to_string(other.DiscoveryPort())).c_str());
    openWindow();
    ASSERT_EQ(items("comboBox_sensor").size(), 3U);
    const std::string last = items("comboBox_sensor")[1];
    OstraServerProcess& chosen = last == "127.0.0.2" ? other : *server;
    OstraServerProcess& passedOver = last == "127.0.0.2" ? *server : other;
    choose("comboBox_sensor", last);
    connectToServer();
    EXPECT_EQ(title(), "Corvane - Sensor - " + last);
    EXPECT_THAT(chosen.Calls(), Contains("POST /system/commands/archive"));
    EXPECT_THAT(passedOver.Calls(), Not(Contains("POST /system/commands/archive")));
}

TEST_F(SourceConnections, disconnectingKeepsThePictureOfATrackThatFailedToLoad) {
    openConnected();
    loadAndEdit("b.trk");
    WriteFile(kTracks + "b.trk", independent::TextMap(track)); // no paths in it
    choose("comboBox_operation", "Load");
    expectErrorBox("ERROR_TRACK - Failed to read path information.");
    click("pushButton_sensor");
    EXPECT_EQ(status(), "Disconnect successfully.");
    EXPECT_FALSE(canvas().pixmap(Qt::ReturnByValue).isNull());
    EXPECT_EQ(text("lineEdit_heightMax"), "43.75");
}

TEST_F(SourceConnections, showsTheWaitCursorDuringEveryLongStep) {
    startServer();
    openWindow();
    std::vector<bool> waits;
    QObject::connect(&find<QStatusBar>("statusBar"), &QStatusBar::messageChanged, window.get(), [&waits] {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        waits.push_back(cursor != nullptr && cursor->shape() == Qt::WaitCursor);
    });
    connectToServer();          // connects and unpacks the backup
    click("toolButton_upload"); // packs; the rest is done by the worker
    awaitWorker();
    ASSERT_EQ(waits.size(), 4U);
    EXPECT_THAT(std::vector<bool>(waits.begin(), waits.end() - 1), Each(true));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    click("pushButton_sensor");
    waits.clear();
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    choose("comboBox_sensor", "Backup File");
    loadBackup(folder.Path("x.osbak"));
    click("toolButton_upload");
    EXPECT_THAT(waits, ElementsAre(true, true, true));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

/// Records the status bar's text whenever it is painted.
class PaintedMessages : public QObject {
  public:
    explicit PaintedMessages(QStatusBar& bar) : bar(bar) { bar.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            painted.push_back(bar.currentMessage().toStdString());
        return false;
    }
    std::vector<std::string> painted;

  private:
    QStatusBar& bar;
};

TEST_F(SourceConnections, showsTheCurrentStepBeforeItsWorkBegins) {
    openWindow();
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    loadBackup(folder.Path("x.osbak"));
    const PaintedMessages seen(find<QStatusBar>("statusBar"));
    click("toolButton_upload");
    EXPECT_THAT(seen.painted, Contains("Saving the backup file..."));
}

} // namespace
