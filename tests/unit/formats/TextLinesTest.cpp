#include "document/formats/CsvScan.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> LinesOf(const std::string& content) {
    const TemporaryFolder folder;
    WriteFile("a", content);
    TextLines lines("a");
    EXPECT_TRUE(lines.IsOpen());
    EXPECT_EQ(lines.FileSize(), content.size());
    std::vector<std::string> all;
    for (std::string_view line; lines.Next(line);)
        all.emplace_back(line);
    return all;
}

TEST(TextLines, splitsAtLineFeeds) {
    EXPECT_THAT(LinesOf("a\n\nbc\n"), ElementsAre("a", "", "bc"));
}

TEST(TextLines, returnsTheRestAfterTheLastLineFeed) {
    EXPECT_THAT(LinesOf("a\nbc"), ElementsAre("a", "bc"));
}

TEST(TextLines, hasNoLineInAnEmptyFile) {
    EXPECT_THAT(LinesOf(""), IsEmpty());
}

TEST(TextLines, reportsLineStartsAndSeeksBackToThem) {
    const TemporaryFolder folder;
    WriteFile("a", "a\r\n\nbc\nd");
    TextLines lines("a");
    std::vector<std::uint64_t> starts;
    std::string_view line;
    do
        starts.push_back(lines.Position());
    while (lines.Next(line));
    EXPECT_THAT(starts, ElementsAre(0, 3, 4, 7, 8));
    lines.MoveTo(4);
    ASSERT_TRUE(lines.Next(line));
    EXPECT_EQ(line, "bc");
    EXPECT_EQ(lines.Position(), 7U);
}

TEST(TextLines, dropsOnlyACarriageReturnBeforeTheLineEnd) {
    EXPECT_THAT(LinesOf("a\r\n\r\nb\rc\nd\r\r\ne\r"), ElementsAre("a", "", "b\rc", "d\r", "e"));
}

TEST(TextLines, returnsLinesOfEveryLengthCompletely) {
    std::vector<std::string> expected;
    std::string content;
    for (const std::size_t size :
         {1U, 262'142U, 262'143U, 262'144U, 262'145U, 0U, 600'000U, 10'000'000U, 3U}) {
        expected.emplace_back(size, static_cast<char>('a' + expected.size()));
        content += expected.back() + '\n';
    }
    EXPECT_EQ(LinesOf(content), expected);
}

TEST(TextLines, failsAtATooLongLine) {
    const TemporaryFolder folder;
    WriteFile("a", "first\n");
    std::filesystem::resize_file("a", 4 * TextLines::kMaxLineLength);
    TextLines lines("a");
    std::string_view line;
    ASSERT_TRUE(lines.Next(line));
    EXPECT_THROW(static_cast<void>(lines.Next(line)), std::length_error);
}

TEST(TextLines, acceptsTheMaximumLineLengthButNotAByteMore) {
    const std::string longest(TextLines::kMaxLineLength, 'x');
    for (const std::string end : {"", "\nmore\n"}) {
        const TemporaryFolder folder;
        WriteFile("a", longest + end);
        TextLines lines("a");
        std::string_view line;
        ASSERT_TRUE(lines.Next(line));
        EXPECT_TRUE(line == longest);
        WriteFile("b", longest + "x" + end);
        TextLines tooLong("b");
        EXPECT_THROW(static_cast<void>(tooLong.Next(line)), std::length_error);
    }
}

TEST(TextLines, opensRegularFilesOnly) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(TextLines("folder").IsOpen());
    EXPECT_FALSE(TextLines("missing").IsOpen());
    EXPECT_FALSE(TextLines("/dev/zero").IsOpen());
    EXPECT_FALSE(TextLines("").IsOpen());
}

TEST(TextLines, reportsAReadFailure) {
    // A regular file whose first page cannot be read: the kernel answers with an input/output error.
    TextLines lines("/proc/self/mem");
    ASSERT_TRUE(lines.IsOpen());
    std::string_view line;
    EXPECT_THROW(static_cast<void>(lines.Next(line)), std::runtime_error);
}

} // namespace
