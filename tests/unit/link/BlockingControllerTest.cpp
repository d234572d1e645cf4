#include "link/BlockingController.h"

#include "FakeOstraSdkClient.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <new>
#include <stdexcept>

using ::testing::ElementsAre;
using ::testing::StrEq;

namespace {

Ve::Exception Failure(int status, const char* message) {
    return {__LINE__, __FILE__, status, "Test", "%s", message};
}

class BlockingControllerTest : public ::testing::Test {
  protected:
    BlockingControllerTest() {
        QObject::connect(&controller, &BlockingController::SignalBackupFinished,
                         [this](const Ve::Exception& result) { backups.push_back(result); });
        QObject::connect(&controller, &BlockingController::SignalRestoreFinished,
                         [this](const Ve::Exception& result) { restores.push_back(result); });
    }

    void ExpectOneRestore(int status, const char* message) {
        controller.SlotRestore(QStringLiteral("a.osbak"));
        EXPECT_TRUE(backups.empty());
        ASSERT_EQ(restores.size(), 1U);
        EXPECT_EQ(restores[0].Status(), status);
        EXPECT_THAT(restores[0].what(), StrEq(message));
    }

    void ExpectOneBackup(int status, const char* message) {
        controller.SlotBackup(QStringLiteral("a.osbak"));
        EXPECT_TRUE(restores.empty());
        ASSERT_EQ(backups.size(), 1U);
        EXPECT_EQ(backups[0].Status(), status);
        EXPECT_THAT(backups[0].what(), StrEq(message));
    }

    FakeServer server;
    OstraSdkClient client;
    BlockingController controller{&client, nullptr};
    std::vector<Ve::Exception> backups;
    std::vector<Ve::Exception> restores;
};

TEST_F(BlockingControllerTest, methodsAreInOrder) {
    const QMetaObject& meta = BlockingController::staticMetaObject;
    struct Row {
        const char* signature;
        QMetaMethod::MethodType type;
    };
    const Row rows[] = {{"SignalRestoreFinished(Ve::Exception)", QMetaMethod::Signal},
                        {"SignalBackupFinished(Ve::Exception)", QMetaMethod::Signal},
                        {"SlotRestore(QString)", QMetaMethod::Slot},
                        {"SlotBackup(QString)", QMetaMethod::Slot}};
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 4);
    for (int index = 0; index < 4; ++index) {
        const QMetaMethod method = meta.method(meta.methodOffset() + index);
        EXPECT_EQ(method.methodSignature().toStdString(), rows[index].signature);
        EXPECT_EQ(method.methodType(), rows[index].type);
    }
}

TEST_F(BlockingControllerTest, resultTypeIsRegisteredUnderItsName) {
    const int type = QMetaType::type("Ve::Exception");
    EXPECT_NE(type, QMetaType::UnknownType);
    EXPECT_EQ(type, qMetaTypeId<Ve::Exception>());
}

TEST_F(BlockingControllerTest, successfulBackupReportsStatusOneOnce) {
    ExpectOneBackup(1, "");
    EXPECT_THAT(server.calls, ElementsAre("Backup a.osbak"));
}

TEST_F(BlockingControllerTest, backupAcceptsNonAsciiNames) {
    controller.SlotBackup(QStringLiteral(u"./Über %s.osbak"));
    EXPECT_THAT(server.calls, ElementsAre("Backup ./Über %s.osbak"));
}

TEST_F(BlockingControllerTest, failedBackupReportsItsStatusAndMessageOnce) {
    server.failAt("Backup", Failure(-998, "Failed to receive 100% of the backup."));
    ExpectOneBackup(-998, "Failed to receive 100% of the backup.");
}

TEST_F(BlockingControllerTest, restoreThatKeepsTheReplayModeSetsNothing) {
    for (const bool mode : {false, true}) {
        server = FakeServer();
        restores.clear();
        server.replayMode = mode;
        server.replayModeAfterRestore = mode;
        ExpectOneRestore(1, "");
        EXPECT_THAT(server.calls, ElementsAre("GetReplayMode", "Restore a.osbak", "GetReplayMode"));
    }
}

TEST_F(BlockingControllerTest, restoreThatChangesTheReplayModeResetsIt) {
    for (const bool mode : {false, true}) {
        server = FakeServer();
        restores.clear();
        server.replayMode = mode;
        server.replayModeAfterRestore = !mode;
        ExpectOneRestore(1, "");
        EXPECT_THAT(server.calls, ElementsAre("GetReplayMode", "Restore a.osbak", "GetReplayMode",
                                              mode ? "SetReplayMode true" : "SetReplayMode false"));
        EXPECT_EQ(server.replayMode, mode);
    }
}

TEST_F(BlockingControllerTest, failureToReadTheModeFirstSkipsTheRestore) {
    server.failAt("GetReplayMode", Failure(-988, "not connected"));
    ExpectOneRestore(-988, "not connected");
    EXPECT_THAT(server.calls, ElementsAre("GetReplayMode"));
}

TEST_F(BlockingControllerTest, failedRestoreDoesNotSetTheReplayMode) {
    server.replayModeAfterRestore = true;
    server.failAt("Restore", Failure(-998, "refused"));
    ExpectOneRestore(-998, "refused");
    EXPECT_THAT(server.calls, ElementsAre("GetReplayMode", "Restore a.osbak"));
}

TEST_F(BlockingControllerTest, failureToReadTheModeAgainSetsNothing) {
    server.replayModeAfterRestore = true;
    server.failAt("GetReplayMode", Failure(-998, "stopped"), 2);
    ExpectOneRestore(-998, "stopped");
    EXPECT_THAT(server.calls, ElementsAre("GetReplayMode", "Restore a.osbak", "GetReplayMode"));
}

TEST_F(BlockingControllerTest, failureToSetTheModeBackIsReported) {
    server.replayModeAfterRestore = true;
    server.failAt("SetReplayMode", Failure(-998, "no"));
    ExpectOneRestore(-998, "no");
}

TEST_F(BlockingControllerTest, otherExceptionsBecomeResultsToo) {
    server.failAt("Backup", std::runtime_error("50%d off"));
    ExpectOneBackup(-998, "The operation was given up - 50%d off.");
    backups.clear();
    server.failAt("Restore", std::bad_alloc());
    controller.SlotRestore(QStringLiteral("a.osbak"));
    ASSERT_EQ(restores.size(), 1U);
    EXPECT_EQ(restores[0].Status(), -998);
    EXPECT_THAT(restores[0].what(), StrEq("The operation was given up - std::bad_alloc."));
}

TEST_F(BlockingControllerTest, thrownValuesBecomeResultsToo) {
    server.failAt("Backup", 42);
    ExpectOneBackup(-998, "The operation was given up - unknown error.");
}

TEST_F(BlockingControllerTest, nextOperationWorksAfterAFailure) {
    server.failAt("Backup", Failure(-998, "once"));
    controller.SlotBackup(QStringLiteral("a"));
    controller.SlotBackup(QStringLiteral("b"));
    ASSERT_EQ(backups.size(), 2U);
    EXPECT_EQ(backups[0].Status(), -998);
    EXPECT_EQ(backups[1].Status(), 1);
}

/// The window's side: signals that queued connections carry to the worker and back.
class Window : public QObject {
    Q_OBJECT

  signals:
    void SignalBackup(QString fileName);
    void SignalRestore(QString fileName);

  public slots:
    void SlotProcessBackup(Ve::Exception result) {
        thread = QThread::currentThread();
        results.push_back(std::move(result));
    }

  public:
    QThread* thread = nullptr;
    std::vector<Ve::Exception> results;
};

TEST(BlockingControllerThread, resultsReturnFromTheWorkerThread) {
    FakeServer server;
    OstraSdkClient client;
    auto* const controller = new BlockingController(&client, nullptr); // deleted when its thread ends
    QThread worker;
    controller->moveToThread(&worker);
    QObject::connect(&worker, &QThread::finished, controller, &QObject::deleteLater);
    Window window;
    QObject::connect(&window, &Window::SignalBackup, controller, &BlockingController::SlotBackup);
    QObject::connect(&window, &Window::SignalRestore, controller, &BlockingController::SlotRestore);
    QObject::connect(controller, &BlockingController::SignalBackupFinished, &window,
                     &Window::SlotProcessBackup);
    QObject::connect(controller, &BlockingController::SignalRestoreFinished, &window,
                     &Window::SlotProcessBackup);
    worker.start(QThread::TimeCriticalPriority);

    server.failAt("Backup", Failure(-998, "lost"));
    emit window.SignalBackup(QStringLiteral("one"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.results.size() == 1; }));
    emit window.SignalRestore(QStringLiteral("two"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.results.size() == 2; }));
    worker.quit();
    worker.wait();

    EXPECT_EQ(window.thread, QThread::currentThread());
    EXPECT_EQ(server.thread, &worker);
    EXPECT_EQ(window.results[0].Status(), -998);
    EXPECT_THAT(window.results[0].what(), StrEq("lost"));
    EXPECT_EQ(window.results[1].Status(), 1);
}

} // namespace

#include "BlockingControllerTest.moc"
