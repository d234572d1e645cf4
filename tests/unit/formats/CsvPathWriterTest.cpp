#include "document/formats/ConvertCSV.h"
#include "document/formats/CsvPaths.h"

#include "DocumentSamples.h"
#include "FileSizeLimit.h"
#include "UpdateTest.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cmath>
#include <filesystem>
#include <limits>
#include <locale>
#include <random>

namespace {

using independent::TextAnchor;
using independent::TextFile;
using independent::TextMap;
using independent::TextPaths;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kZeroAnchor = "Anchor\nX,Y,Angle\n0,0,0\nEnd\n\n";
const std::string kNoPaths =
    "Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\nEnd\n\n"
    "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\nEnd\n";

using CsvUpdate = UpdateTest<ConvertCSV>;

/// A path of two points with one tick of the ruler.
TrackPath PathOfOneTick(const std::vector<QPointF>& points) {
    TrackPath path;
    path.points = points;
    path.methods = {1, 2};
    path.lengths = {100, 101};
    path.widths = {50, 51};
    path.spaces = {99, 98};
    path.rulerMarks.resize(1);
    path.rulerMarks[0].tickStarts = {{0.5, 0.25}};
    path.rulerMarks[0].tickEnds = {{0.75, 1}};
    return path;
}

TEST_F(CsvUpdate, equalsTheIndependentWriterByteForByte) {
    Track original = SampleTrack();
    SetRecords(original, {SamplePaths()[1]}, {9, 8, 7, 6, 5});
    EXPECT_EQ(Updated(TextFile(original), SamplePaths()), TextFile(TrackWithPaths()));
    EXPECT_EQ(FileContent("original.trk"), TextFile(original));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CsvUpdate, writesTheDocumentedPathLines) {
    const TrackPath path = PathOfOneTick({{0.25, 0.4}, {0.65, 0.4}});
    WriteFile("a.trk", "");
    EXPECT_EQ(converter.UpdatePath("a.trk", "b.trk", {path}, 0.25, 10, 20, 100, 1000), 0);
    EXPECT_EQ(FileContent("b.trk"),
              kZeroAnchor +
                  "Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\n0,0,0,60,270,85,1020,1,12.5\nEnd\n\n"
                  "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
                  "0,0,35,420,0.25,0.4,1,100,50,99\n0,1,75,420,0.65,0.4,2,101,51,98\nEnd\n");
}

TEST_F(CsvUpdate, keepsAnAnchorOrWritesZeros) {
    const Track track = TrackWithPaths();
    EXPECT_EQ(Updated(TextMap(track) + TextAnchor(track) + TextPaths(track), {}),
              TextMap(track) + TextAnchor(track) + kNoPaths);
    EXPECT_EQ(Updated(TextMap(track) + TextPaths(track), {}), TextMap(track) + kZeroAnchor + kNoPaths);
}

TEST_F(CsvUpdate, dropsEverythingFromTheFirstRulerLine) {
    const Track track = TrackWithPaths();
    EXPECT_EQ(Updated(TextPaths(track) + TextMap(track) + TextAnchor(track), {}), kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("before\nRuler", {}), "before\n" + kZeroAnchor + kNoPaths);
}

TEST_F(CsvUpdate, copiesAnOriginalWithoutRulersCompletely) {
    const std::string old = "Segment\nhead\n0,0,1,1,0.1,0.2,1,2,3,4\nEnd\n";
    EXPECT_EQ(Updated(TextMap(SampleTrack()) + old, SamplePaths()),
              TextMap(SampleTrack()) + old + kZeroAnchor + TextPaths(TrackWithPaths()));
}

TEST_F(CsvUpdate, findsKeywordsAnywhereInTheFirstFieldOnly) {
    EXPECT_EQ(Updated("MyAnchors,1\n", {}), "MyAnchors,1\n" + kNoPaths);
    EXPECT_EQ(Updated("x,Anchor\n", {}), "x,Anchor\n" + kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("anchor\nAncho\n", {}), "anchor\nAncho\n" + kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("a\nOldRulers,1\nb\n", {}), "a\n" + kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("x,Ruler\nruler\nRule\n", {}), "x,Ruler\nruler\nRule\n" + kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("\"a,Ruler\",1\nb\n", {}), kZeroAnchor + kNoPaths);
}

TEST_F(CsvUpdate, copiesLinesUnchangedWithALineFeedAfterEach) {
    EXPECT_EQ(Updated("\n\n a , \"b,c\" ,d\\\\e\n\nlast without a line feed", {}),
              "\n\n a , \"b,c\" ,d\\\\e\n\nlast without a line feed\n" + kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("", {}), kZeroAnchor + kNoPaths);
    EXPECT_EQ(Updated("a\r\nb\r\n", {}), "a\nb\n" + kZeroAnchor + kNoPaths);
}

TEST_F(CsvUpdate, numbersTheRulersOfAllPathsConsecutively) {
    const std::vector<TrackPath> paths = {SamplePaths()[0], SamplePaths()[1], SamplePaths()[0]};
    Track track = SampleTrack();
    SetRecords(track, paths, SampleTransform());
    ASSERT_EQ(track.rulers.back().index, 5);
    ASSERT_EQ(track.rulers.back().path, 2);
    EXPECT_EQ(Updated(TextFile(SampleTrack()), paths), TextFile(track));
}

TEST_F(CsvUpdate, writesTheTwoRulerHeaderLinesWithoutMarks) {
    const std::string target = Updated(TextMap(SampleTrack()), WithoutMarks(SamplePaths()));
    EXPECT_THAT(target, HasSubstr("Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\nEnd\n\nSegment\n"));
}

TEST_F(CsvUpdate, writesOneLineForAPathOfOnePoint) {
    EXPECT_THAT(Updated("", {SamplePaths()[1]}), HasSubstr("Space\n0,0,-48,17.5,0.5,0.625,4,7,-8,9\nEnd\n"));
}

TEST_F(CsvUpdate, writesNumbersWithSixSignificantDigits) {
    TrackPath path;
    const std::vector<std::pair<double, std::string>> numbers = {
        {12.5, "12.5"},
        {1.0 / 3, "0.333333"},
        {1.2e6, "1.2e+06"},
        {123456.4, "123456"},
        {1234567, "1.23457e+06"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {-2.0, "-2"},
        {1e100, "1e+100"},
        {999999.5, "1e+06"},
        {-2.5e-300, "-2.5e-300"},
        {100, "100"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"}};
    std::string expected;
    for (const auto& [number, text] : numbers) {
        expected += "0," + std::to_string(path.points.size()) + "," + text + ",0," + text + ",0,1,2,3,4\n";
        path.points.emplace_back(number, 0);
        path.methods.push_back(1);
        path.lengths.push_back(2);
        path.widths.push_back(3);
        path.spaces.push_back(4);
    }
    WriteFile("a.trk", "");
    EXPECT_EQ(converter.UpdatePath("a.trk", "b.trk", {path}, 1, 0, 0, 1, 1), 0);
    EXPECT_THAT(FileContent("b.trk"), HasSubstr("Space\n" + expected + "End\n"));
}

TEST_F(CsvUpdate, writesAnyNumberLikeAStream) {
    std::mt19937_64 random(20); // NOLINT(cert-msc51-cpp): the same numbers in every run
    TrackPath path;
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        const double x = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 200) - 150);
        const double y = static_cast<double>(random() % 2000000) / 1000 - 1000;
        expected += "0," + std::to_string(i) + "," + independent::TextNumber(x) + "," +
                    independent::TextNumber(y) + "," + independent::TextNumber(x) + "," +
                    independent::TextNumber(y) + ",1,2,3,4\n";
        path.points.emplace_back(x, y);
    }
    path.methods.assign(path.points.size(), 1);
    path.lengths.assign(path.points.size(), 2);
    path.widths.assign(path.points.size(), 3);
    path.spaces.assign(path.points.size(), 4);
    WriteFile("a.trk", "");
    EXPECT_EQ(converter.UpdatePath("a.trk", "b.trk", {path}, 1, 0, 0, 1, 1), 0);
    EXPECT_TRUE(FileContent("b.trk") ==
                kZeroAnchor + kNoPaths.substr(0, kNoPaths.size() - 4) + expected + "End\n");
}

/// A locale with a decimal comma, as in much of Europe.
class CommaNumbers : public std::numpunct<char> {
  protected:
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

TEST_F(CsvUpdate, writesADecimalPointInAnyLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"})
        std::setlocale(LC_ALL, name); // if the system has it
    const std::locale old = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    const std::string target = Updated(TextFile(SampleTrack()), SamplePaths());
    std::locale::global(old);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(target, TextFile(TrackWithPaths()));
}

TEST_F(CsvUpdate, canOverwriteTheOriginal) {
    WriteFile("a.trk", TextFile(SampleTrack()));
    EXPECT_EQ(Update("a.trk", "a.trk", SamplePaths()), 0);
    EXPECT_EQ(FileContent("a.trk"), TextFile(TrackWithPaths()));
}

TEST_F(CsvUpdate, keepsEverythingBeforeTheRealTracksRulers) {
    const std::string content = FileContent(TestData("fault.trk"));
    Track track;
    SetRecords(track, SamplePaths(), SampleTransform());
    const std::string updated = Updated(content, SamplePaths());
    EXPECT_TRUE(updated == content.substr(0, content.find("Ruler\n")) + TextPaths(track));
    EXPECT_EQ(independent::ReadText(updated).segments, track.segments);
}

TEST_F(CsvUpdate, missingFileFailsWithoutALogLine) {
    std::filesystem::create_directory("folder.trk");
    EXPECT_EQ(Update("missing.trk", "b.trk", {}), kOriginalNotReadable);
    EXPECT_EQ(Update("folder.trk", "b.trk", {}), kOriginalNotReadable);
    EXPECT_EQ(Update("missing.trk", "missing/b.trk", {}), kOriginalNotReadable);
    EXPECT_THAT(NamesHere(), ElementsAre("folder.trk"));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CsvUpdate, failsForATargetInAMissingFolder) {
    WriteFile("a.trk", TextFile(SampleTrack()));
    EXPECT_EQ(Update("a.trk", "missing/b.trk", {}), kTargetNotWritable);
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
    WriteFile("a.trk", "a bad escape \\x\n");
    EXPECT_EQ(Update("a.trk", "missing/b.trk", {}), kTargetNotWritable) << "before a line is read";
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CsvUpdate, badEscapeFailsAndKeepsTheTarget) {
    WriteFile("b.trk", "old");
    for (const char* line : {"a\\x,b\n", "a,b\\q\n", "ends with \\"}) {
        WriteFile("a.trk", "Info\n" + std::string(line));
        EXPECT_EQ(Update("a.trk", "b.trk", SamplePaths()), kOriginalNotReadable);
        EXPECT_THAT(log.Lines(), ElementsAre(StartsWith("ERROR: [UpdatePathInCsv] (EXCEPTION) ")));
    }
    EXPECT_EQ(FileContent("b.trk"), "old");
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk", "b.trk"));
}

TEST_F(CsvUpdate, copiesALineOfTenMegabytes) {
    const std::string line = "x," + std::string(10'000'000, 'y') + "\n";
    EXPECT_TRUE(Updated(line, {}) == line + kZeroAnchor + kNoPaths);
}

TEST_F(CsvUpdate, keepsTheOldFileOnAFullDisk) {
    const std::string original = TextFile(SampleTrack());
    WriteFile("a.trk", original);
    for (const std::size_t limit : {std::size_t{0}, std::size_t{100}, original.size()}) {
        const FileSizeLimit full(limit);
        EXPECT_EQ(Update("a.trk", "a.trk", SamplePaths()), kTargetNotWritable) << limit;
        EXPECT_EQ(FileContent("a.trk"), original);
        EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
    }
}

TEST_F(CsvUpdate, keepsTheOldFileForListsOfUnequalLengths) {
    WriteFile("a.trk", "old");
    for (std::vector<int> TrackPath::*list :
         {&TrackPath::methods, &TrackPath::lengths, &TrackPath::widths, &TrackPath::spaces}) {
        std::vector<TrackPath> paths = SamplePaths();
        (paths[0].*list).pop_back();
        EXPECT_NE(Update("a.trk", "a.trk", paths), 0);
    }
    EXPECT_EQ(FileContent("a.trk"), "old");
}

TEST_F(CsvUpdate, neverWritesACompleteTrack) {
    EXPECT_EQ(
        converter.WriteTrack("a.trk", InfoOf(SampleTrack()), SampleTrack().cells, 25, {}, 1, 0, 0, 1, 1), -1);
    EXPECT_THAT(NamesHere(), IsEmpty());
}

using CsvPathsAlone = UpdateTest<ConvertCSV>;

TEST_F(CsvPathsAlone, equalTheSegmentSection) {
    const TrackPath path = PathOfOneTick({{0.5, 0.1}, {1.0 / 3.0, 12345678.75}});
    EXPECT_EQ(WriteCsvPathsAlone("a.csv", {path}), 0);
    EXPECT_EQ(FileContent("a.csv"),
              "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
              "0,0,0.5,0.1,0.5,0.10000000000000001,1,100,50,99\n"
              "0,1,0.333333,1.23457e+07,0.33333333333333331,12345678.75,2,101,51,98\n"
              "End\n");
}

TEST_F(CsvPathsAlone, readBackExactly) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> place(-1, 2);
    std::vector<TrackPath> paths(5);
    for (TrackPath& path : paths) {
        for (int point = 0; point < 200; ++point)
            path.points.emplace_back(place(random), std::ldexp(place(random), point - 100));
        path.methods.assign(200, 1);
        path.lengths.assign(200, -2147483647 - 1);
        path.widths.assign(200, 2147483647);
        path.spaces.assign(200, 0);
    }
    EXPECT_EQ(WriteCsvPathsAlone("a.csv", paths), 0);
    std::vector<TrackPath> read;
    EXPECT_EQ(converter.ReadPath("a.csv", read), 0);
    ExpectSamePaths(read, paths);
}

TEST_F(CsvPathsAlone, keepTheTargetWhenItCannotBeWritten) {
    EXPECT_EQ(WriteCsvPathsAlone("missing/a.csv", {}), kTargetNotWritable);
    WriteFile("a.csv", "old");
    const FileSizeLimit full(10);
    EXPECT_EQ(WriteCsvPathsAlone("a.csv", {}), kTargetNotWritable);
    EXPECT_EQ(FileContent("a.csv"), "old");
}

} // namespace
