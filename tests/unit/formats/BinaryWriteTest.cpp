#include "document/formats/ConvertBIN.h"

#include "DocumentSamples.h"
#include "FileSizeLimit.h"
#include "OrdinaryUser.h"
#include "UpdateTest.h"

#include <gmock/gmock.h>

#include <filesystem>
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

constexpr std::size_t kHeaderSize = 68;

/// A track with enough cells for several reads and writes, whose rows do not end at their bounds.
Track LargeTrack() {
    Track track = TrackWithPaths();
    track.width = 401;
    track.height = 997;
    track.cells.clear();
    for (int i = 0; i < track.width * track.height; ++i)
        track.cells.push_back(static_cast<std::int16_t>(i * 7919));
    return track;
}

class BinaryWrite : public UpdateTest<ConvertBIN> {
  protected:
    int Write(const std::string& target, const Track& track, const std::vector<TrackPath>& paths) {
        const WorldTransform t = SampleTransform();
        return converter.WriteTrack(target, InfoOf(track), track.cells, 0, paths, t.widthScale, t.xOffset,
                                    t.yOffset, t.xScale, t.yScale);
    }
};

using BinaryUpdate = BinaryWrite;

TEST_F(BinaryWrite, equalsTheIndependentWriterByteForByte) {
    EXPECT_EQ(Write("a.trk", SampleTrack(), SamplePaths()), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(TrackWithPaths()));
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryWrite, equalsTheIndependentWriterForALargeMap) {
    const Track track = LargeTrack();
    EXPECT_EQ(Write("a.trk", track, SamplePaths()), 0);
    EXPECT_TRUE(FileContent("a.trk") == BinaryFile(track));
}

TEST_F(BinaryWrite, hasItsFieldsAtTheirOffsets) {
    EXPECT_EQ(Write("a.trk", SampleTrack(), {}), 0);
    const std::string content = FileContent("a.trk");
    ASSERT_EQ(content.size(), kHeaderSize + 30 + 28 + 8 + 8);
    EXPECT_EQ(content.substr(0, 12), std::string("Track  \0\1\0\0\0", 12));
    EXPECT_EQ(content.substr(60, 8), std::string("\5\0\0\0\3\0\0\0", 8));
    EXPECT_EQ(content.substr(68, 2), std::string("\xF8\xFF", 2)) << "-8, the first cell";
    EXPECT_EQ(content.substr(76, 2), std::string("\x00\x80", 2)) << "a cell without measurement";
    EXPECT_EQ(content.substr(98, 4), std::string("A\0\0\0", 4));
    EXPECT_EQ(content.substr(126), std::string("R\0\0\0\0\0\0\0S\0\0\0\0\0\0\0", 16));
}

TEST_F(BinaryWrite, countsNoRulersForPathsWithoutMarks) {
    Track track = SampleTrack();
    const std::vector<TrackPath> paths = WithoutMarks(SamplePaths());
    SetRecords(track, paths, SampleTransform());
    ASSERT_EQ(track.rulers.size(), 0U);
    ASSERT_EQ(track.segments.size(), 4U);
    EXPECT_EQ(Write("a.trk", SampleTrack(), paths), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
}

TEST_F(BinaryWrite, numbersTheRulersOfAllPathsConsecutively) {
    const std::vector<TrackPath> paths = {SamplePaths()[0], SamplePaths()[1], SamplePaths()[0]};
    Track track = SampleTrack();
    SetRecords(track, paths, SampleTransform());
    ASSERT_EQ(track.rulers.back().index, 5);
    ASSERT_EQ(track.rulers.back().path, 2);
    EXPECT_EQ(Write("a.trk", SampleTrack(), paths), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
}

TEST_F(BinaryWrite, countsATickByItsStart) {
    std::vector<TrackPath> paths = SamplePaths();
    Track track = SampleTrack();
    SetRecords(track, paths, SampleTransform());
    ASSERT_EQ(track.rulers.size(), 3U);
    paths[0].rulerMarks[0].tickEnds.emplace_back(9, 9);
    paths[0].rulerMarks[1].bands.resize(5);
    EXPECT_EQ(Write("a.trk", SampleTrack(), paths), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
}

TEST_F(BinaryWrite, writesNothingBetweenHeaderAndAnchorWithoutCells) {
    Track track = TrackWithPaths();
    track.width = 0;
    track.cells.clear();
    EXPECT_EQ(Write("a.trk", track, SamplePaths()), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
    EXPECT_EQ(FileContent("a.trk").substr(kHeaderSize, 1), "A");
}

TEST_F(BinaryWrite, takesTheMapsSizeOnlyFromItsDimensions) {
    const Track track = SampleTrack();
    std::vector<std::int16_t> cells = track.cells;
    cells.resize(25, 99); // the buffer may be larger than the map, and its reported size different again
    for (const std::int64_t size : {std::int64_t{0}, std::int64_t{25}, std::int64_t{-1}}) {
        EXPECT_EQ(converter.WriteTrack("a.trk", InfoOf(track), cells, size, {}, 1, 0, 0, 1, 1), 0);
        EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
    }
}

TEST_F(BinaryWrite, keepsTheBitsOfNonFiniteNumbers) {
    Track track = SampleTrack();
    track.anchor = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(), -0.0};
    track.zResolution = -std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Write("a.trk", track, {}), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(track));
}

TEST_F(BinaryWrite, failsForATargetInAMissingFolder) {
    EXPECT_EQ(Write("missing/a.trk", SampleTrack(), {}), kTargetNotWritable);
    std::filesystem::create_directory("folder.trk");
    EXPECT_EQ(Write("folder.trk", SampleTrack(), {}), kTargetNotWritable);
    EXPECT_THAT(NamesHere(), ElementsAre("folder.trk"));
}

TEST_F(BinaryWrite, keepsTheOldFileOnAFullDisk) {
    const Track track = LargeTrack();
    const std::size_t size = BinaryFile(track).size();
    WriteFile("a.trk", "old");
    for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{67}, size / 2, size - 1}) {
        const FileSizeLimit full(limit);
        EXPECT_EQ(Write("a.trk", track, SamplePaths()), kTargetNotWritable) << limit;
        EXPECT_EQ(FileContent("a.trk"), "old");
        EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
    }
    EXPECT_EQ(Write("a.trk", track, SamplePaths()), 0);
}

TEST_F(BinaryWrite, logsAFullDisk) {
    // Larger than the log's file, smaller than the track.
    const FileSizeLimit full(120);
    EXPECT_EQ(Write("a.trk", SampleTrack(), {}), kTargetNotWritable);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not write file (a.trk)"));
}

TEST_F(BinaryWrite, keepsTheOldFileForAMapSmallerThanItsDimensions) {
    Track track = SampleTrack();
    track.cells.pop_back();
    WriteFile("a.trk", "old");
    EXPECT_EQ(Write("a.trk", track, {}), kTargetNotWritable);
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("ERROR: [WriteTrackToBin] (EXCEPTION) ")));
    for (const auto& [width, height] : std::vector<std::pair<std::int32_t, std::int32_t>>{
             {-1, 3},
             {5, -1},
             {-1, -1},
             {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::max()}}) {
        track.width = width;
        track.height = height;
        EXPECT_EQ(Write("a.trk", track, {}), kTargetNotWritable);
    }
    EXPECT_EQ(FileContent("a.trk"), "old");
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
}

TEST_F(BinaryWrite, keepsTheOldFileForListsOfUnequalLengths) {
    WriteFile("a.trk", "old");
    for (std::vector<int> TrackPath::*list :
         {&TrackPath::methods, &TrackPath::lengths, &TrackPath::widths, &TrackPath::spaces}) {
        std::vector<TrackPath> paths = SamplePaths();
        (paths[0].*list).pop_back();
        EXPECT_EQ(Write("a.trk", SampleTrack(), paths), kTargetNotWritable);
    }
    std::vector<TrackPath> paths = SamplePaths();
    paths[0].rulerMarks[0].tickEnds.pop_back();
    EXPECT_EQ(Write("a.trk", SampleTrack(), paths), kTargetNotWritable);
    EXPECT_EQ(FileContent("a.trk"), "old");
}

TEST_F(BinaryUpdate, equalsTheIndependentWriterByteForByte) {
    Track original = SampleTrack();
    const std::vector<TrackPath> old = {SamplePaths()[1], SamplePaths()[1], SamplePaths()[0]};
    SetRecords(original, old, {9, 8, 7, 6, 5});
    EXPECT_EQ(Updated(BinaryFile(original), SamplePaths()), BinaryFile(TrackWithPaths()));
    EXPECT_EQ(FileContent("original.trk"), BinaryFile(original));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryUpdate, copiesALargeMap) {
    Track original = LargeTrack();
    original.segments.clear();
    EXPECT_TRUE(Updated(BinaryFile(original), SamplePaths()) == BinaryFile(LargeTrack()));
}

/// Maps are copied in chunks of 65,536 cells.
TEST_F(BinaryUpdate, copiesMapsThatDoNotFillTheLastChunk) {
    for (const int cells : {1, 2, 65'535, 65'536, 65'537, 131'073}) {
        Track track = SampleTrack();
        track.width = cells;
        track.height = 1;
        track.cells.clear();
        for (int i = 0; i < cells; ++i)
            track.cells.push_back(static_cast<std::int16_t>(i * 7919 + 1));
        Track expected = track;
        SetRecords(expected, SamplePaths(), SampleTransform());
        EXPECT_TRUE(Updated(BinaryFile(track), SamplePaths()) == BinaryFile(expected)) << cells;
    }
}

TEST_F(BinaryUpdate, equalsTheIndependentWriterForTheRealTrack) {
    const std::string content = FileContent(TestData("fault-binary.trk"));
    Track expected = independent::ReadBinary(content);
    EXPECT_EQ(BinaryFile(expected), content);
    SetRecords(expected, SamplePaths(), SampleTransform());
    EXPECT_TRUE(Updated(content, SamplePaths()) == BinaryFile(expected));
}

TEST_F(BinaryUpdate, writesCountsOfZeroWithoutPaths) {
    EXPECT_EQ(Updated(BinaryFile(TrackWithPaths()), {}), BinaryFile(SampleTrack()));
}

TEST_F(BinaryUpdate, canOverwriteTheOriginal) {
    WriteFile("a.trk", BinaryFile(SampleTrack()));
    EXPECT_EQ(Update("a.trk", "a.trk", SamplePaths()), 0);
    EXPECT_EQ(FileContent("a.trk"), BinaryFile(TrackWithPaths()));
}

TEST_F(BinaryUpdate, copiesTheMagicUnchanged) {
    for (const char* magic : {"xxxxxTra", "Tracking", "\0Tra\0\xFF\n\r"}) {
        const std::string first(magic, 8);
        const std::string updated = Updated(BinaryFile(SampleTrack()).replace(0, 8, first), SamplePaths());
        EXPECT_EQ(updated, BinaryFile(TrackWithPaths()).replace(0, 8, first));
    }
}

TEST_F(BinaryUpdate, dropsOldBlocksEvenWhenDamaged) {
    const Track track = TrackWithPaths();
    const std::string start = BinaryHead(track) + BinaryAnchor(track);
    const std::string blocks = BinaryRulers(track) + BinarySegments(track);
    for (std::size_t size = 0; size <= blocks.size(); ++size)
        ASSERT_EQ(Updated(start + blocks.substr(0, size), SamplePaths()), start + blocks) << size;
    EXPECT_EQ(Updated(start + "anything else", SamplePaths()), start + blocks);
}

TEST_F(BinaryUpdate, readsBackWithoutAnAnchor) {
    const Track track = TrackWithPaths();
    const std::string head = BinaryHead(track);
    const std::string blocks = BinaryRulers(track) + BinarySegments(track);
    for (const std::string& rest :
         {std::string(), blocks, BinarySegments(track), std::string("Q\0\0\0more", 8)}) {
        EXPECT_EQ(Updated(head + rest, SamplePaths()), head + blocks);
        std::vector<TrackPath> paths;
        EXPECT_EQ(converter.ReadPath("target.trk", paths), 0);
        ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
    }
}

TEST_F(BinaryUpdate, reportsAnotherVersion) {
    for (const char version : {'\0', '\2', '\x63'}) {
        WriteFile("a.trk", BinaryFile(SampleTrack()).replace(8, 1, 1, version));
        WriteFile("b.trk", "old");
        EXPECT_EQ(Update("a.trk", "b.trk", SamplePaths()), kOriginalNotReadable);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Wrong file version (" + std::to_string(version) + ")"));
        EXPECT_EQ(FileContent("b.trk"), "old");
    }
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk", "b.trk"));
}

TEST_F(BinaryUpdate, reportsAFileThatIsNoTrack) {
    std::filesystem::create_directory("folder.trk");
    WriteFile("text.trk", "Info\nno track at all\n");
    WriteFile("short.trk", "Track");
    for (const std::string name : {"missing.trk", "folder.trk", "text.trk", "short.trk"}) {
        EXPECT_EQ(Update(name, "b.trk", SamplePaths()), kOriginalNotReadable);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (" + name + ")"));
    }
    EXPECT_EQ(Update("missing.trk", "missing/b.trk", SamplePaths()), kOriginalNotReadable);
    EXPECT_EQ(Update("text.trk", "missing/b.trk", SamplePaths()), kTargetNotWritable)
        << "both are opened before anything is read";
    EXPECT_THAT(NamesHere(), ElementsAre("folder.trk", "short.trk", "text.trk"));
}

TEST_F(BinaryUpdate, failsForATargetInAMissingFolder) {
    WriteFile("a.trk", BinaryFile(SampleTrack()));
    EXPECT_EQ(Update("a.trk", "missing/b.trk", SamplePaths()), kTargetNotWritable);
    std::filesystem::create_directory("folder.trk");
    EXPECT_EQ(Update("a.trk", "folder.trk", SamplePaths()), kTargetNotWritable);
}

TEST_F(BinaryUpdate, doesNotWriteAReadOnlyFile) {
    WriteFile("a.trk", BinaryFile(SampleTrack()));
    WriteFile("b.trk", "old");
    std::filesystem::permissions("b.trk", std::filesystem::perms::owner_read);
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        EXPECT_EQ(Update("a.trk", "b.trk", SamplePaths()), kTargetNotWritable);
    }
    EXPECT_EQ(FileContent("b.trk"), "old");
}

TEST_F(BinaryUpdate, truncatedOriginalFailsAndKeepsTheTarget) {
    const Track track = TrackWithPaths();
    const std::string head = BinaryHead(track);
    const std::string start = head + BinaryAnchor(track);
    WriteFile("b.trk", "old");
    for (std::size_t size = 0; size < start.size(); ++size) {
        if (size == head.size())
            continue;
        WriteFile("a.trk", start.substr(0, size));
        EXPECT_EQ(Update("a.trk", "b.trk", SamplePaths()), kOriginalNotReadable) << size;
        EXPECT_EQ(log.Lines().size(), 1U);
        EXPECT_EQ(FileContent("b.trk"), "old");
    }
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk", "b.trk"));
}

TEST_F(BinaryUpdate, failsForImpossibleDimensions) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    Track track = SampleTrack();
    for (const auto& [width, height] : std::vector<std::pair<std::int32_t, std::int32_t>>{
             {-1, 3}, {5, -1}, {-5, -3}, {kMaxInt32, 1}, {kMaxInt32, kMaxInt32}, {65536, 65536}}) {
        track.width = width;
        track.height = height;
        WriteFile("a.trk", BinaryFile(track));
        EXPECT_EQ(Update("a.trk", "b.trk", SamplePaths()), kOriginalNotReadable);
        const std::string dimensions = std::to_string(width) + " x " + std::to_string(height);
        EXPECT_THAT(log.Lines(),
                    ElementsAre("ERROR: [UpdatePathInBin] (EXCEPTION) " +
                                (width < 0 || height < 0
                                     ? "Invalid height map size " + dimensions
                                     : "Height map of " + dimensions + " cells is not in the file")));
    }
}

TEST_F(BinaryUpdate, keepsTheOldFileOnAFullDisk) {
    const std::string original = BinaryFile(LargeTrack());
    WriteFile("a.trk", original);
    for (const std::size_t limit :
         {std::size_t{0}, std::size_t{100}, original.size() / 2, original.size() - 1}) {
        const FileSizeLimit full(limit);
        EXPECT_EQ(Update("a.trk", "a.trk", SamplePaths()), kTargetNotWritable) << limit;
        EXPECT_TRUE(FileContent("a.trk") == original);
        EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
    }
}

} // namespace
