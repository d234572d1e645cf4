#include "log/Log.h"
#include "FakeClock.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <new>
#include <set>
#include <sstream>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

class LogTest : public ::testing::Test {
  protected:
    LogTest() : file(std::fopen("test.log", "w+")) {
        fakeClock::Begin();
        Output2FILE::Target() = file;
    }
    ~LogTest() override {
        FILELog::ReportingLevel() = DEBUG4;
        Output2FILE::Target() = stderr;
        std::fclose(file);
    }

    [[nodiscard]] std::string written() const { return FileContent(folder.Path("test.log")); }

    TemporaryFolder folder;
    std::FILE* file;
};

TEST_F(LogTest, levelsHaveTheirValuesAndNames) {
    const char* const names[] = {"ERROR", "WARNING", "INFO", "DEBUG", "DEBUG1", "DEBUG2", "DEBUG3", "DEBUG4"};
    const LogLevel levels[] = {ERROR, WARNING, INFO, DEBUG, DEBUG1, DEBUG2, DEBUG3, DEBUG4};
    for (int value = 0; value < 8; ++value) {
        EXPECT_EQ(levels[value], value);
        EXPECT_STREQ(LogLevelName(levels[value]), names[value]);
    }
}

TEST_F(LogTest, lineHasTimeLevelAndMessage) {
    fakeClock::ticks = fakeClock::kStart + 42;
    LOG_LINE(ERROR) << "Failed to open " << 3 << " files.";
    EXPECT_EQ(written(), "14:03:07.042 ERROR: Failed to open 3 files.\n");
}

TEST_F(LogTest, tabsCountTheLevelsBeyondDebug) {
    LOG_LINE(ERROR) << "e";
    LOG_LINE(WARNING) << "w";
    LOG_LINE(INFO) << "i";
    LOG_LINE(DEBUG) << "d";
    LOG_LINE(DEBUG1) << "d1";
    LOG_LINE(DEBUG2) << "d2";
    LOG_LINE(DEBUG3) << "d3";
    LOG_LINE(DEBUG4) << "d4";
    EXPECT_EQ(written(), "14:03:07.000 ERROR: e\n"
                         "14:03:07.000 WARNING: w\n"
                         "14:03:07.000 INFO: i\n"
                         "14:03:07.000 DEBUG: d\n"
                         "14:03:07.000 DEBUG1: \td1\n"
                         "14:03:07.000 DEBUG2: \t\td2\n"
                         "14:03:07.000 DEBUG3: \t\t\td3\n"
                         "14:03:07.000 DEBUG4: \t\t\t\td4\n");
}

TEST_F(LogTest, failedTimeStampIsShownInTheLine) {
    fakeClock::fails = true;
    LOG_LINE(INFO) << "on";
    fakeClock::fails = false;
    EXPECT_EQ(written(), "Error in NowTime() INFO: on\n");
}

TEST_F(LogTest, messageIsNeverUsedAsAFormat) {
    LOG_LINE(INFO) << "100%s of %n%n %d \"./Ü b.trk\"";
    EXPECT_EQ(written(), "14:03:07.000 INFO: 100%s of %n%n %d \"./Ü b.trk\"\n");
}

TEST_F(LogTest, longMessageIsWrittenCompletely) {
    const std::string message(1'000'000, 'x');
    LOG_LINE(INFO) << message;
    EXPECT_EQ(written(), "14:03:07.000 INFO: " + message + "\n");
}

TEST_F(LogTest, everyLevelIsReportedByDefault) {
    EXPECT_EQ(FILELog::ReportingLevel(), DEBUG4);
}

TEST_F(LogTest, levelsBeyondTheReportedOneAreNeitherEvaluatedNorWritten) {
    FILELog::ReportingLevel() = INFO;
    int evaluated = 0;
    LOG_LINE(DEBUG) << ++evaluated;
    LOG_LINE(INFO) << "kept";
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(written(), "14:03:07.000 INFO: kept\n");
}

TEST_F(LogTest, nothingIsEvaluatedOrWrittenWithoutATarget) {
    Output2FILE::Target() = nullptr;
    int evaluated = 0;
    LOG_LINE(ERROR) << ++evaluated;
    Output2FILE::Write("lost\n");
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(written(), "");
}

TEST_F(LogTest, eachLineIsFlushedImmediately) {
    LOG_LINE(INFO) << "one";
    EXPECT_EQ(written(), "14:03:07.000 INFO: one\n");
    LOG_LINE(INFO) << "two";
    EXPECT_EQ(written(), "14:03:07.000 INFO: one\n14:03:07.000 INFO: two\n");
}

TEST_F(LogTest, isUsableWhereAnyStatementIs) {
    bool reached = false;
    if (written().empty()) {
        LOG_LINE(INFO) << "then";
    } else
        reached = true;
    EXPECT_FALSE(reached);
    EXPECT_EQ(written(), "14:03:07.000 INFO: then\n");
}

/// Collects complete lines like the log's policy.
struct Collector {
    static std::vector<std::string>& Lines() {
        static std::vector<std::string> lines;
        return lines;
    }
    static void Write(const std::string& text) { Lines().push_back(text); }
};

TEST_F(LogTest, lineIsWrittenInOneCallAtDestruction) {
    {
        Log<Collector> log;
        log.Line(INFO) << "in "
                       << "pieces";
        EXPECT_TRUE(Collector::Lines().empty());
    }
    EXPECT_THAT(Collector::Lines(), ::testing::ElementsAre("14:03:07.000 INFO: in pieces\n"));
}

/// Fails to allocate memory for the line.
struct Forgetful {
    static void Write(const std::string&) { throw std::bad_alloc(); }
};

TEST_F(LogTest, unwritableLineIsDroppedWithoutEndingTheProgram) {
    EXPECT_NO_THROW({ Log<Forgetful>().Line(ERROR) << "lost"; });
    LOG_LINE(INFO) << "on";
    EXPECT_EQ(written(), "14:03:07.000 INFO: on\n");
}

TEST_F(LogTest, logIsPolymorphicAndNotCopied) {
    EXPECT_TRUE(std::has_virtual_destructor_v<FILELog>);
    EXPECT_FALSE(std::is_copy_constructible_v<FILELog>);
    EXPECT_FALSE(std::is_copy_assignable_v<FILELog>);
}

TEST_F(LogTest, linesOfTwoThreadsDoNotMix) {
    constexpr int kLines = 500;
    const auto write = [](char letter) {
        for (int i = 0; i < kLines; ++i)
            LOG_LINE(INFO) << letter << i << ' ' << std::string(300, letter);
    };
    std::thread worker(write, 'w');
    write('g');
    worker.join();

    std::set<std::string> lines;
    std::istringstream text(written());
    for (std::string line; std::getline(text, line);)
        lines.insert(line);
    EXPECT_EQ(lines.size(), 2U * kLines);
    for (const char letter : {'w', 'g'})
        for (int i = 0; i < kLines; ++i)
            ASSERT_EQ(lines.count("14:03:07.000 INFO: " + std::string(1, letter) + std::to_string(i) + " " +
                                  std::string(300, letter)),
                      1U);
}

TEST(LogTarget, isStandardErrorInitially) {
    EXPECT_EQ(Output2FILE::Target(), stderr);
}

} // namespace
