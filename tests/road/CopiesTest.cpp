#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QProcess>

#include <algorithm>
#include <chrono>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using std::chrono::steady_clock;

/// Copies of the built program, started in one folder by one user.
class CopiesTest : public ::testing::Test {
  protected:
    CopiesTest() {
        ::mkdir("instance", 0700);
        ::setenv("CORVANE_INSTANCE", folder.Path("instance").c_str(), 1);
        ::setenv("CORVANE_KEPT", folder.Path("kept").c_str(), 1);
        ::setenv("OSTRA_DISCOVERY", "127.0.0.1:9", 1); // also when this is not started by ctest
    }

    ~CopiesTest() override {
        for (const auto& copy : copies) {
            copy->kill();
            copy->waitForFinished();
        }
    }

    QProcess& start(const QStringList& arguments = {}) {
        copies.push_back(std::make_unique<QProcess>());
        copies.back()->setReadChannel(QProcess::StandardError); // what is waited for
        copies.back()->start(QStringLiteral(CORVANE_PROGRAM), arguments);
        return *copies.back();
    }

    /// Waits until the condition holds; false after a minute.
    template<typename Condition>
    static bool waitUntil(Condition condition) {
        const auto end = steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (steady_clock::now() > end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

    [[nodiscard]] std::string log() const { return FileContent(folder.Path("Corvane.log")); }

    /// A copy writes its first line when it makes its window.
    [[nodiscard]] bool waitForWindow() const {
        return waitUntil([this] { return !log().empty() && log().back() == '\n'; });
    }

    /// The first line on standard error that is the program's own, once it arrives.
    [[nodiscard]] static std::string messageOf(QProcess& copy) {
        while (copy.canReadLine() || copy.waitForReadyRead(60'000)) {
            std::string line = copy.readLine().toStdString();
            if (line.starts_with("corvane: "))
                return line;
        }
        return {};
    }

    [[nodiscard]] static bool hasEnded(QProcess& copy) {
        copy.waitForFinished(1);
        return copy.state() == QProcess::NotRunning;
    }

    [[nodiscard]] long running() const {
        return std::count_if(copies.begin(), copies.end(), [](const auto& copy) { return !hasEnded(*copy); });
    }

    TemporaryFolder folder;
    std::vector<std::unique_ptr<QProcess>> copies;
};

TEST_F(CopiesTest, secondCopyEndsWithZeroAndLeavesTheLogAlone) {
    QProcess& first = start();
    ASSERT_TRUE(waitForWindow());
    ASSERT_EQ(::unlink("Corvane.log"), 0); // whoever opens it now makes another
    QProcess& second = start();
    ASSERT_TRUE(second.waitForFinished(60'000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(second.readAllStandardOutput().toStdString(), "");
    EXPECT_NE(::access("Corvane.log", F_OK), 0);
    EXPECT_FALSE(hasEnded(first));
}

TEST_F(CopiesTest, saysWhetherACopyRuns) {
    QProcess& none = start({QStringLiteral("--running")});
    ASSERT_TRUE(none.waitForFinished(60'000));
    EXPECT_EQ(none.exitCode(), 1);
    EXPECT_EQ(none.readAllStandardOutput().toStdString(), "No copy of Corvane runs.\n");
    EXPECT_NE(::access("Corvane.log", F_OK), 0);

    start();
    ASSERT_TRUE(waitForWindow());
    QProcess& one = start({QStringLiteral("--running")});
    ASSERT_TRUE(one.waitForFinished(60'000));
    EXPECT_EQ(one.exitCode(), 0);
    EXPECT_EQ(one.readAllStandardOutput().toStdString(), "A copy of Corvane runs.\n");
}

TEST_F(CopiesTest, fromTheDesktopItWorksInAFolderOfTheUsersOwn) {
    ::setenv("HOME", folder.Path("home").c_str(), 1);
    start({QStringLiteral("--desktop")});
    ASSERT_TRUE(waitUntil([this] { return !FileContent(folder.Path("home/Corvane/Corvane.log")).empty(); }));
    EXPECT_NE(::access("Corvane.log", F_OK), 0);
}

TEST_F(CopiesTest, fromTheDesktopItSaysWhyItDoesNotOpen) {
    ::mkdir("home", 0700);
    ::setenv("HOME", folder.Path("home").c_str(), 1);
    WriteFile("home/Corvane", "a file in the folder's place");
    QProcess& blocked = start({QStringLiteral("--desktop")});
    EXPECT_EQ(messageOf(blocked),
              "corvane: The folder " + folder.Path("home/Corvane") + " cannot be made.\n");
    EXPECT_FALSE(hasEnded(blocked)); // its box waits for an answer

    ASSERT_EQ(::unlink("home/Corvane"), 0);
    start();
    ASSERT_TRUE(waitForWindow());
    QProcess& second = start({QStringLiteral("--desktop")});
    EXPECT_EQ(messageOf(second), "corvane: Corvane is already running.\n");
    EXPECT_FALSE(hasEnded(second));
}

TEST_F(CopiesTest, showsItsVersionAndItsOptionsWithoutADisplay) {
    ::setenv("QT_QPA_PLATFORM", "none", 1); // no window could be made
    QProcess& version = start({QStringLiteral("--version")});
    ASSERT_TRUE(version.waitForFinished(60'000));
    EXPECT_EQ(version.readAllStandardOutput().toStdString(), "corvane " CORVANE_VERSION "\n");
    QProcess& help = start({QStringLiteral("--help")});
    ASSERT_TRUE(help.waitForFinished(60'000));
    EXPECT_THAT(help.readAllStandardOutput().toStdString(),
                testing::AllOf(testing::HasSubstr("\n  --desktop "), testing::HasSubstr("\n  --running ")));
    EXPECT_EQ(version.exitCode() + help.exitCode(), 0);
    EXPECT_NE(::access("Corvane.log", F_OK), 0);
}

TEST_F(CopiesTest, saysWhetherADisplayAnswers) {
    QProcess& shown = start({QStringLiteral("--display")});
    ASSERT_TRUE(shown.waitForFinished(60'000));
    EXPECT_EQ(shown.exitCode(), 0);
    EXPECT_EQ(shown.readAllStandardOutput().toStdString(), "Windows are shown by \"offscreen\".\n");
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    ::setenv("DISPLAY", "127.0.0.1:65000", 1); // beyond the ports that exist
    QProcess& dead = start({QStringLiteral("--display")});
    ASSERT_TRUE(dead.waitForFinished(60'000));
    EXPECT_EQ(dead.readAllStandardOutput().toStdString(), "");
    EXPECT_NE(dead.exitStatus(), QProcess::NormalExit);
    EXPECT_NE(::access("Corvane.log", F_OK), 0);
}

TEST_F(CopiesTest, killedCopyLetsTheNextStartAtOnce) {
    QProcess& first = start();
    ASSERT_TRUE(waitForWindow());
    first.kill();
    ASSERT_TRUE(first.waitForFinished());
    WriteFile("Corvane.log", "");
    QProcess& second = start();
    ASSERT_TRUE(waitForWindow());
    EXPECT_FALSE(hasEnded(second));
}

TEST_F(CopiesTest, exactlyOneOfFiftyAtOnceHasAWindow) {
    for (int copy = 0; copy < 50; ++copy)
        start();
    ASSERT_TRUE(waitForWindow());
    ASSERT_TRUE(waitUntil([this] { return running() == 1; })) << running() << " run";
    for (const auto& copy : copies) {
        EXPECT_NE(copy->error(), QProcess::FailedToStart);
        if (hasEnded(*copy)) {
            EXPECT_EQ(copy->exitStatus(), QProcess::NormalExit);
            EXPECT_EQ(copy->exitCode(), 0);
        }
    }
    const std::string text = log();
    const std::string firstLine = text.substr(text.find(' '), text.find('\n') - text.find(' ') + 1);
    EXPECT_EQ(text.find(firstLine, text.find('\n')), std::string::npos) << text;
}

} // namespace
