#include "document/formats/ConvertCSV.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadTextInfo : public testing::Test {
  protected:
    int Read(const std::string& content) {
        WriteFile("a.trk", content);
        info = StartInfo();
        return ConvertCSV().ReadInfo("a.trk", info);
    }

    /// Reads the small track with one change.
    int ReadWith(const std::string& old, const std::string& now) {
        return Read(Replaced(SmallTrack(), old, now));
    }

    TemporaryFolder folder;
    LogCapture log;
    TrackInfo info;
};

TEST_F(ReadTextInfo, fillsEveryField) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    EXPECT_EQ(info.xResolution, 0.1);
    EXPECT_EQ(info.yResolution, 0.2);
    EXPECT_EQ(info.zResolution, 0.01);
    EXPECT_EQ(info.xOffset, 3.0);
    EXPECT_EQ(info.yOffset, 4.0);
    EXPECT_EQ(info.zOffset, -5.0);
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.anchorX, 7.5);
    EXPECT_EQ(info.anchorY, -8.0);
    EXPECT_EQ(info.anchorAngle, 90.0);
    EXPECT_THAT(info.columnPositions, ElementsAre(0.0, 0.1, 0.2));
    EXPECT_THAT(info.rowPositions, ElementsAre(10.0, 10.1));
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_EQ(info.maxHeight, 1.31);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextInfo, keepsTheCallersRangeUnlessHeightsExtendIt) {
    WriteFile("a.trk", SmallTrack());
    info.minHeight = -1.0;
    info.maxHeight = 2.0;
    EXPECT_EQ(ConvertCSV().ReadInfo("a.trk", info), 0);
    EXPECT_EQ(info.minHeight, -1.0);
    EXPECT_EQ(info.maxHeight, 2.0);
}

TEST_F(ReadTextInfo, rangeIgnoresEmptyCells) {
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31", "10.1,,,"), 0);
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_EQ(info.maxHeight, 1.30);
}

TEST_F(ReadTextInfo, keepsTheRangeWithoutMeasurements) {
    EXPECT_EQ(Read("Info\nhead\n1,1,1,0,0,0,2,1\nYX,0,1\n0,,\nEnd\n"), 0);
    EXPECT_EQ(info.minHeight, 32768.0);
    EXPECT_EQ(info.maxHeight, -32768.0);
}

TEST_F(ReadTextInfo, rangeIgnoresNonFiniteHeights) {
    for (const char* const odd : {"nan", "-nan", "inf", "-inf", "1e400", "-1e400", "INFINITY"}) {
        EXPECT_EQ(ReadWith("10.1,1.27", std::string("10.1,") + odd), 0);
        EXPECT_EQ(info.minHeight, 1.25) << odd;
        EXPECT_EQ(info.maxHeight, 1.31) << odd;
    }
}

TEST_F(ReadTextInfo, readsAFieldOfBlanksAsZero) {
    EXPECT_EQ(ReadWith("10.1,1.27", "10.1, "), 0);
    EXPECT_EQ(info.minHeight, 0.0);
}

TEST_F(ReadTextInfo, anchorIsZeroInAFileWithoutOne) {
    WriteFile("a.trk", Replaced(SmallTrack(), "Anchor\nX,Y,Angle\n7.5,-8,90\nEnd\n", ""));
    info.anchorX = info.anchorY = info.anchorAngle = 9.0;
    EXPECT_EQ(ConvertCSV().ReadInfo("a.trk", info), 0);
    EXPECT_EQ(info.anchorX, 0.0);
    EXPECT_EQ(info.anchorY, 0.0);
    EXPECT_EQ(info.anchorAngle, 0.0);
}

TEST_F(ReadTextInfo, findsTheAnchorBeforeTheHeightMapToo) {
    const std::string anchor = "Anchor\nX,Y,Angle\n7.5,-8,90\nEnd\n";
    EXPECT_EQ(Read(anchor + Replaced(SmallTrack(), anchor, "")), 0);
    EXPECT_EQ(info.anchorY, -8.0);
    EXPECT_EQ(info.maxHeight, 1.31);
}

TEST_F(ReadTextInfo, ignoresAnAnchorWithinTheHeightMap) {
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31\n", "Anchor,1,2,3\n"), 0);
    EXPECT_THAT(info.rowPositions, ElementsAre(10.0, 0.0));
    EXPECT_EQ(info.anchorX, 7.5);
    EXPECT_EQ(info.maxHeight, 3.0);
}

TEST_F(ReadTextInfo, refusesAnEmptyOrMissingAnchorLine) {
    EXPECT_EQ(ReadWith("7.5,-8,90\n", "\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid image conversion row (empty)"));
    EXPECT_EQ(info.maxHeight, 1.31);
    EXPECT_EQ(Read("Anchor\nX,Y,Angle"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid image conversion row (empty)"));
}

TEST_F(ReadTextInfo, refusesAnAnchorLineOfTwoFields) {
    EXPECT_EQ(ReadWith("7.5,-8,90", "7.5,-8"), 1);
    EXPECT_THAT(
        log.Lines(),
        ElementsAre("ERROR: [ReadInfoFromCsv] (EXCEPTION) The anchor line has fewer than three fields"));
}

TEST_F(ReadTextInfo, recognisesKeywordsWithinTheFirstField) {
    std::string track = Replaced(SmallTrack(), "Info\n", "MyInfo block,x\n");
    track = Replaced(track, "YX,", "corner YX mm,");
    track = Replaced(track, "Anchor\n", "TheAnchor:\n");
    EXPECT_EQ(Read(Replaced(track, "End", " End of map,")), 0);
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.anchorX, 7.5);
    EXPECT_EQ(info.maxHeight, 1.31);
}

TEST_F(ReadTextInfo, findsKeywordsInTheFirstFieldOnly) {
    EXPECT_EQ(Read("x,Info\ny,YX\nz,Anchor\n" + SmallTrack()), 0);
    EXPECT_EQ(info.anchorX, 7.5);
}

TEST_F(ReadTextInfo, recognisesAQuotedKeyword) {
    EXPECT_EQ(ReadWith("YX,0.0", "\"Y\"X,\"0.0\""), 0);
    EXPECT_EQ(info.maxHeight, 1.31);
}

TEST_F(ReadTextInfo, skipsTheInfoHeaderLineWithAnyContent) {
    for (const char* const header : {"", "End", "YX,1", "Info", "bad \\x escape", "\""}) {
        EXPECT_EQ(
            ReadWith("XResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height", header), 0)
            << header;
        EXPECT_EQ(info.width, 3);
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextInfo, skipsEmptyLines) {
    EXPECT_EQ(ReadWith("10.1,", "\n\n10.1,"), 0);
    EXPECT_THAT(info.rowPositions, ElementsAre(10.0, 10.1));
    EXPECT_EQ(Read("\n\n" + SmallTrack()), 0);
}

TEST_F(ReadTextInfo, ignoresCarriageReturns) {
    std::string track;
    for (const char character : SmallTrack())
        track += character == '\n' ? std::string("\r\n") : std::string(1, character);
    EXPECT_EQ(Read(Replaced(track, "1.31\r\n", "\r\n\r\n")), 0);
    EXPECT_EQ(info.maxHeight, 1.30);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.anchorAngle, 90.0);
}

TEST_F(ReadTextInfo, refusesAnInfoLineWithoutEightFields) {
    EXPECT_EQ(ReadWith("-5,3,2", "-5,3"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=7 for height map info extraction"));
    EXPECT_EQ(ReadWith("-5,3,2", "-5,3,2,"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=9 for height map info extraction"));
}

TEST_F(ReadTextInfo, refusesAnEmptyOrMissingInfoLine) {
    EXPECT_EQ(Read("Info\nhead\n\n1,1,1,0,0,0,2,1\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot retrieve height map info from empty item vector"));
    EXPECT_EQ(Read("Info"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot retrieve height map info from empty item vector"));
}

TEST_F(ReadTextInfo, refusesAHeaderOneValueShortOrLong) {
    EXPECT_EQ(ReadWith("YX,0.0,0.1,0.2", "YX,0.0,0.1"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=3 for column world positions"));
    EXPECT_EQ(ReadWith("YX,0.0,0.1,0.2", "YX,0.0,0.1,0.2,0.3"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=5 for column world positions"));
}

TEST_F(ReadTextInfo, refusesAHeightMapBeforeItsDimensions) {
    EXPECT_EQ(Read("YX,0,1\n0,1,2\nEnd\nInfo\nhead\n1,1,1,0,0,0,2,1\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=3 for column world positions"));
}

TEST_F(ReadTextInfo, refusesOtherDimensionsAfterTheHeightMap) {
    const std::string map = "Info\nhead\n1,1,1,0,0,0,2,1\nYX,0,1\n0,1,2\nEnd\nInfo\nhead\n";
    EXPECT_EQ(Read(map + "1,1,1,0,0,0,2,1\n"), 0);
    for (const char* const other : {"1,1,1,0,0,0,3,1\n", "1,1,1,0,0,0,2,2\n"}) {
        static_cast<void>(log.Lines());
        EXPECT_EQ(Read(map + other), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=3 for column world positions"));
    }
}

TEST_F(ReadTextInfo, reportsAMissingHeightMap) {
    EXPECT_EQ(Read("Info\nhead\n1,1,1,0,0,0,2,1\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
    EXPECT_EQ(info.width, 2);
    EXPECT_EQ(Read(""), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
}

TEST_F(ReadTextInfo, treatsMissingCellsAndRowsAsUnmeasured) {
    EXPECT_EQ(ReadWith("10.0,1.25,,1.30\n10.1,1.27,1.29,1.31\n", "10.0,1.25\n"), 0);
    EXPECT_THAT(info.rowPositions, ElementsAre(10.0, 0.0));
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_EQ(info.maxHeight, 1.25);
}

TEST_F(ReadTextInfo, refusesAnExtraRow) {
    EXPECT_EQ(ReadWith("1.31\n", "1.31\n10.2,1,2,3\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid row=2 for pixel values retrieval"));
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_THAT(info.rowPositions, ElementsAre(10.0, 10.1));
}

TEST_F(ReadTextInfo, continuesAfterTheHeightMap) {
    const std::string second = "YX,5,6,7\n20,9,8,7\nEnd\n";
    EXPECT_EQ(Read(SmallTrack() + second), 0);
    EXPECT_THAT(info.columnPositions, ElementsAre(5.0, 6.0, 7.0));
    EXPECT_THAT(info.rowPositions, ElementsAre(20.0, 0.0));
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_EQ(info.maxHeight, 9.0);
}

TEST_F(ReadTextInfo, namesTheFileThatItCannotOpen) {
    EXPECT_EQ(ConvertCSV().ReadInfo("no \"such\" %s ü.trk", info), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find csv file (no \"such\" %s ü.trk)"));
    std::filesystem::create_directory("folder");
    EXPECT_EQ(ConvertCSV().ReadInfo("folder", info), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find csv file (folder)"));
}

TEST_F(ReadTextInfo, reportsAFileWithoutPermission) {
    WriteFile("a.trk", SmallTrack());
    ASSERT_EQ(chmod("a.trk", 0), 0);
    const bool isSuperuser = geteuid() == 0; // permissions do not apply to root
    if (isSuperuser) {
        ASSERT_EQ(seteuid(65'534), 0);
    }
    EXPECT_EQ(ConvertCSV().ReadInfo("a.trk", info), 1);
    if (isSuperuser) {
        ASSERT_EQ(seteuid(0), 0);
    }
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find csv file (a.trk)"));
}

TEST_F(ReadTextInfo, logsTheTokenizersErrors) {
    EXPECT_EQ(ReadWith("10.1,1.27", "10.1,1.27\\x"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadInfoFromCsv] (EXCEPTION) unknown escape sequence"));
    EXPECT_EQ(info.minHeight, 1.25);
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31", "10.1,1.27,1.29,1.31\\"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadInfoFromCsv] (EXCEPTION) cannot end with escape"));
}

TEST_F(ReadTextInfo, readsAnOpenQuoteAsOneField) {
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31", "10.1,\"1.27,1.29,1.31"), 0);
    EXPECT_EQ(info.maxHeight, 1.30);
}

TEST_F(ReadTextInfo, refusesDimensionsLargerThanTheFile) {
    for (const char* const height : {"-1", "2147483647", "-2147483648", "100000"}) {
        EXPECT_EQ(ReadWith("-5,3,2", std::string("-5,3,") + height), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough")) << height;
        EXPECT_THAT(info.rowPositions, IsEmpty());
    }
    for (const char* const width : {"-1", "2147483647", "-2147483648", "0"}) {
        EXPECT_EQ(ReadWith("-5,3,2", std::string("-5,") + width + ",2"), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid item count=4 for column world positions"))
            << width;
        EXPECT_THAT(info.columnPositions, IsEmpty());
    }
}

TEST_F(ReadTextInfo, refusesMoreRowsThanTheFileHasBytes) {
    const std::string bytes = std::to_string(SmallTrack().size() + 2); // three digits instead of one
    ASSERT_EQ(bytes.size(), 3U);
    EXPECT_EQ(ReadWith("-5,3,2", "-5,3," + bytes), 0);
    EXPECT_EQ(info.rowPositions.size(), SmallTrack().size() + 2);
    EXPECT_EQ(ReadWith("-5,3,2", "-5,3," + std::to_string(SmallTrack().size() + 3)), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
}

TEST_F(ReadTextInfo, refusesRowsWhenTheHeightIsZero) {
    EXPECT_EQ(ReadWith("-5,3,2", "-5,3,0"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid row=0 for pixel values retrieval"));
}

TEST_F(ReadTextInfo, readsALineOfTenMegabytes) {
    EXPECT_EQ(Read(TenMegabytes('x')), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
    EXPECT_EQ(Read("Info\nhead\n" + TenMegabytes(',')), 1);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: Invalid item count=10000001 for height map info extraction"));
}

TEST_F(ReadTextInfo, failsAtALineWithoutEnd) {
    WriteFile("a.trk", "Info\n");
    std::filesystem::resize_file("a.trk", 200U << 20U);
    EXPECT_EQ(ConvertCSV().ReadInfo("a.trk", info), 1);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: [ReadInfoFromCsv] (EXCEPTION) A line is longer than 67108864 bytes"));
}

TEST_F(ReadTextInfo, namesTheLineOfAnError) {
    EXPECT_EQ(ReadWith("0.1,0.2,0.01,3,4,-5,3,2\n", "0.1,0.2,0.01,3,4,-5,3\n"), 1);
    EXPECT_THAT(log.LinesWithPlaces(),
                ElementsAre("INFO: Line 3: \"0.1,0.2,0.01,3,4,-5,3\"",
                            "ERROR: Invalid item count=7 for height map info extraction"));
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31\n", "10.1,\"open\\x\n"), 1);
    const std::vector<std::string> lines = log.LinesWithPlaces();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "INFO: Line 6: \"10.1,\"open\\x\"");
}

TEST_F(ReadTextInfo, countsEmptyLinesAndShowsOnlyTheStartOfALine) {
    const std::string tooMany = "0.0,0.1,0.2," + std::string(100, '\t');
    EXPECT_EQ(ReadWith("YX,0.0,0.1,0.2\n", "\n\r\nYX," + tooMany + "\n"), 1);
    EXPECT_THAT(log.LinesWithPlaces(),
                ElementsAre("INFO: Line 6: \"YX,0.0,0.1,0.2," + std::string(45, '?') + "...\"",
                            "ERROR: Invalid item count=5 for column world positions"));
}

} // namespace
