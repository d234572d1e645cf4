#include "document/formats/ConvertBIN.h"

#include "DocumentSamples.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <limits>

namespace {

using independent::BinaryAnchor;
using independent::BinaryFile;
using independent::BinaryHead;
using independent::BinaryRulers;
using independent::BinarySegments;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kTagged = "ERROR: [ReadPathFromBin] (EXCEPTION) ";
constexpr std::size_t kCountOffset = 4; // after a block's tag

void SetCount(std::string& block, std::int32_t count) {
    for (std::size_t i = 0; i < 4; ++i)
        block[kCountOffset + i] = static_cast<char>((static_cast<std::uint32_t>(count) >> (8 * i)) & 0xFFU);
}

class BinaryPath : public testing::Test {
  protected:
    int Read(const std::string& content) {
        WriteFile("a.trk", content);
        return converter.ReadPath("a.trk", paths);
    }

    /// The sizes of the paths read.
    [[nodiscard]] std::vector<std::size_t> Sizes() const {
        std::vector<std::size_t> sizes;
        for (const TrackPath& path : paths)
            sizes.push_back(path.points.size());
        return sizes;
    }

    /// Reads a file whose points have these path numbers.
    int ReadNumbered(const std::vector<std::int32_t>& numbers) {
        Track track = SampleTrack();
        for (const std::int32_t number : numbers) {
            independent::Segment segment;
            segment.path = number;
            track.segments.push_back(segment);
        }
        return Read(BinaryFile(track));
    }

    TemporaryFolder folder;
    LogCapture log;
    ConvertBIN converter;
    std::vector<TrackPath> paths;
};

TEST_F(BinaryPath, readsRelativeCoordinatesAndAllParameters) {
    EXPECT_EQ(Read(BinaryFile(TrackWithPaths())), 0);
    ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryPath, replacesTheListsContent) {
    paths.resize(5);
    EXPECT_EQ(Read(BinaryFile(TrackWithPaths())), 0);
    ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
}

TEST_F(BinaryPath, ofTheRealTrackEqualTheIndependentReaders) {
    const Track track = independent::ReadBinary(FileContent(TestData("fault-binary.trk")));
    ASSERT_EQ(converter.ReadPath(TestData("fault-binary.trk"), paths), 0);
    Track again = track;
    SetRecords(again, paths, {1, track.xOffset, track.yOffset, 403 * 0.25, 344 * 0.3});
    ASSERT_EQ(again.segments.size(), track.segments.size());
    for (std::size_t i = 0; i < track.segments.size(); ++i) {
        EXPECT_EQ(again.segments[i].relativeX, track.segments[i].relativeX);
        EXPECT_EQ(again.segments[i].relativeY, track.segments[i].relativeY);
        EXPECT_NEAR(again.segments[i].x, track.segments[i].x, 1e-9);
        EXPECT_NEAR(again.segments[i].y, track.segments[i].y, 1e-9);
        again.segments[i].x = track.segments[i].x;
        again.segments[i].y = track.segments[i].y;
    }
    EXPECT_EQ(again.segments, track.segments);
    EXPECT_THAT(Sizes(), ElementsAre(4U, 3U));
}

TEST_F(BinaryPath, areFoundWithoutTheBlocksBeforeThem) {
    const Track track = TrackWithPaths();
    const std::string head = BinaryHead(track);
    const std::string segments = BinarySegments(track);
    for (const std::string& before : {BinaryAnchor(track), BinaryRulers(track), std::string()}) {
        EXPECT_EQ(Read(head + before + segments), 0);
        ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryPath, areEmptyInAFileWithoutTheirBlock) {
    const Track track = TrackWithPaths();
    const std::string head = BinaryHead(track);
    const std::string anchor = BinaryAnchor(track);
    const std::string rulers = BinaryRulers(track);
    for (const std::string& rest : {std::string(), anchor, rulers, anchor + rulers, anchor + anchor + rulers,
                                    std::string("Q\0\0\0", 4), anchor + std::string("S\1\0\0", 4)}) {
        paths.resize(3);
        EXPECT_EQ(Read(head + rest), 0);
        EXPECT_THAT(paths, IsEmpty());
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryPath, failWhenTruncatedAndKeepThePointsBefore) {
    const Track track = TrackWithPaths();
    const std::size_t head = BinaryHead(track).size();
    const std::size_t anchorEnd = head + BinaryAnchor(track).size();
    const std::size_t rulersEnd = anchorEnd + BinaryRulers(track).size();
    const std::string content = BinaryFile(track);
    for (std::size_t size = 0; size < content.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        const bool blockEnd = size == head || size == anchorEnd || size == rulersEnd;
        EXPECT_EQ(Read(content.substr(0, size)), blockEnd ? 0 : 1);
        EXPECT_EQ(log.Lines().size(), blockEnd ? 0U : 1U);
        std::size_t points = 0;
        for (const std::size_t count : Sizes())
            points += count;
        EXPECT_EQ(points, size > rulersEnd + 8 ? (size - rulersEnd - 8) / 56 : 0);
    }
}

TEST_F(BinaryPath, areKeptWhenTheCountExceedsTheFile) {
    const Track track = TrackWithPaths();
    std::string segments = BinarySegments(track);
    for (const std::int32_t count : {5, 1'000'000, std::numeric_limits<std::int32_t>::max()}) {
        SetCount(segments, count);
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(Read(BinaryHead(track) + segments), 1);
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(kTagged)));
        ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
    }
}

TEST_F(BinaryPath, failForANegativeCount) {
    const Track track = TrackWithPaths();
    for (const std::int32_t count : {-1, std::numeric_limits<std::int32_t>::min()}) {
        std::string segments = BinarySegments(track);
        SetCount(segments, count);
        EXPECT_EQ(Read(BinaryHead(track) + segments), 1);
        std::string rulers = BinaryRulers(track);
        SetCount(rulers, count);
        EXPECT_EQ(Read(BinaryHead(track) + rulers + BinarySegments(track)), 1);
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(kTagged), HasSubstr(kTagged)));
    }
}

TEST_F(BinaryPath, failForMoreRulersThanTheFileContains) {
    const Track track = TrackWithPaths();
    std::string rulers = BinaryRulers(track);
    SetCount(rulers, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Read(BinaryHead(track) + rulers + BinarySegments(track)), 1);
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(kTagged)));
}

TEST_F(BinaryPath, startOnlyWhereThePathNumberEqualsTheCountSoFar) {
    EXPECT_EQ(ReadNumbered({0, 0, 1, 1}), 0);
    EXPECT_THAT(Sizes(), ElementsAre(2U, 2U));
    EXPECT_EQ(ReadNumbered({0, 2}), 0);
    EXPECT_THAT(Sizes(), ElementsAre(2U));
    EXPECT_EQ(ReadNumbered({0, 1, 0, -5, 2, 1}), 0);
    EXPECT_THAT(Sizes(), ElementsAre(1U, 3U, 2U));
}

TEST_F(BinaryPath, failWhenTheFirstPointStartsNoPath) {
    for (const std::int32_t first : {1, -1, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(ReadNumbered({first, 0}), 1);
        EXPECT_THAT(paths, IsEmpty());
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(kTagged)));
    }
}

TEST_F(BinaryPath, failForAFileThatIsNoTrackAndKeepTheList) {
    paths.resize(2);
    EXPECT_EQ(converter.ReadPath("missing.trk", paths), 1);
    EXPECT_EQ(Read("Segment\n"), 1);
    EXPECT_EQ(paths.size(), 2U);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (missing.trk)",
                                         "ERROR: Could not find file (a.trk)"));
}

TEST_F(BinaryPath, failForAnotherVersion) {
    std::string content = BinaryFile(TrackWithPaths());
    content[8] = 2;
    EXPECT_EQ(Read(content), 1);
    EXPECT_THAT(paths, IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Wrong file version (2)"));
}

TEST_F(BinaryPath, failAfterAMapLargerThanTheFile) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    Track track = TrackWithPaths();
    for (const auto& [width, height] : std::vector<std::pair<std::int32_t, std::int32_t>>{
             {-1, 3}, {5, -1}, {-5, -3}, {kMaxInt32, kMaxInt32}, {65536, 65536}}) {
        track.width = width;
        track.height = height;
        EXPECT_EQ(Read(BinaryFile(track)), 1);
        const std::string dimensions = std::to_string(width) + " x " + std::to_string(height);
        EXPECT_THAT(log.Lines(),
                    ElementsAre(kTagged + (width < 0 || height < 0 ? "Invalid height map size " + dimensions
                                                                   : "Height map of " + dimensions +
                                                                         " cells is not in the file")));
    }
}

} // namespace
