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

    QProcess& start() {
        copies.push_back(std::make_unique<QProcess>());
        copies.back()->start(QStringLiteral(CORVANE_PROGRAM), QStringList());
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

TEST_F(CopiesTest, SecondCopyEndsWithZeroAndLeavesTheLogAlone) {
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

TEST_F(CopiesTest, KilledCopyLetsTheNextStartAtOnce) {
    QProcess& first = start();
    ASSERT_TRUE(waitForWindow());
    first.kill();
    ASSERT_TRUE(first.waitForFinished());
    WriteFile("Corvane.log", "");
    QProcess& second = start();
    ASSERT_TRUE(waitForWindow());
    EXPECT_FALSE(hasEnded(second));
}

TEST_F(CopiesTest, ExactlyOneOfFiftyAtOnceHasAWindow) {
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
