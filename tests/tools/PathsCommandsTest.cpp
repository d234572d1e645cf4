#include "ToolRun.h"

#include "SmallTrack.h"
#include "TemporaryFolder.h"
#include "document/formats/CsvPaths.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <filesystem>

namespace {

using independent::Segment;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kHeader = "Track,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n";

/// 40 x 20 cells of 0.5 x 0.25 from 10, 20 on; two paths.
Track TwoPathsTrack() {
    std::vector<Segment> segments = PathAcross(0, 3, 0.25, 50);
    for (const Segment& point : PathAcross(1, 2, 1.0 / 3.0, 70))
        segments.push_back(point);
    Track track = SmallTrack(segments);
    track.anchor = {1.5, -2.25, 30};
    return track;
}

class PathsCommands : public testing::Test {
  protected:
    PathsCommands() {
        WriteFile("binary.trk", BinaryFile(TwoPathsTrack()));
        WriteFile("text.trk", TextFile(TwoPathsTrack()));
    }

    /// Imports a list, which must be refused for this reason and leave the track unchanged.
    static void ExpectRefused(const std::string& list, const std::string& reason,
                              const std::string& name = "list.csv") {
        const std::string before = FileContent("binary.trk");
        WriteFile(name, list);
        const ToolResult result = RunTrackTool({"paths", "import", "binary.trk", name});
        EXPECT_EQ(result.code, 3);
        EXPECT_EQ(result.errors, "corvane-track paths import: " + name + ": " + reason + "\n");
        EXPECT_EQ(FileContent("binary.trk"), before);
    }

    TemporaryFolder folder;
};

Track ReadTrack(const std::string& file) {
    return independent::ReadBinary(FileContent(file));
}

/// The ticks of one straight segment, calculated independently: along the segment every Space + 1 pixels of
/// the aspect-corrected image, from its start to before its end, Length / 2 to both sides.
std::vector<independent::Ruler> TicksOf(const Segment& from, const Segment& to, const Track& track) {
    constexpr double kShownWidth = 80; // 40 columns, twice as wide as high
    std::vector<independent::Ruler> ticks;
    const double length = (to.relativeX - from.relativeX) * kShownWidth;
    for (double at = 0; at < length; at += from.space + 1) {
        const double x =
            (from.relativeX + at / kShownWidth) * (track.width * track.xResolution) + track.xOffset;
        const double half = from.length / 2.0 / track.height;
        const auto y = [&](double relative) {
            return relative * (track.height * track.yResolution) + track.yOffset;
        };
        ticks.push_back({static_cast<int>(ticks.size()), from.path, from.point, x, y(from.relativeY + half),
                         x, y(from.relativeY - half), from.method, from.width * track.yResolution});
    }
    return ticks;
}

TEST_F(PathsCommands, exportsEveryPointWithItsWorldPosition) {
    const ToolResult result = RunTrackTool({"paths", "export", "binary.trk"});
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_THAT(result.Lines(),
                ElementsAre(kHeader.substr(0, kHeader.size() - 1), "0,0,15,21.25,0.25,0.25,1,50,60,70",
                            "0,1,20,21.25,0.5,0.25,1,51,61,71", "0,2,25,21.25,0.75,0.25,1,52,62,72",
                            HasSubstr(",0.3333333333333333,0.3333333333333333,1,70,80,90"),
                            HasSubstr(",0.6666666666666666,0.3333333333333333,1,71,81,91")));
    EXPECT_EQ(RunTrackTool({"paths", "export", "binary.trk", "--output", "list.csv"}).output, "");
    EXPECT_EQ(FileContent("list.csv"), result.output);
}

TEST_F(PathsCommands, importsItsOwnExportBitForBit) {
    RunTrackTool({"paths", "export", "binary.trk", "-o", "list.csv"});
    Track other = TwoPathsTrack();
    other.segments = SmallTrack(PathAcross(0, 5, 0.75, 20)).segments;
    WriteFile("other.trk", BinaryFile(other));
    EXPECT_EQ(RunTrackTool({"paths", "import", "other.trk", "list.csv"}).errors, "");
    Track written = ReadTrack("other.trk");
    EXPECT_FALSE(written.rulers.empty());
    written.rulers.clear();
    Track expected = TwoPathsTrack();
    expected.heights.clear(); // not stored in the binary encoding
    expected.columnPositions.clear();
    expected.rowPositions.clear();
    EXPECT_EQ(written, expected);
}

TEST_F(PathsCommands, importComputesTheRulerMarks) {
    WriteFile("list.csv", "Track,RelativeX,RelativeY,Method,Length,Width,Space\n"
                          "0,0.25,0.5,2,8,6,9\n0,0.75,0.5,1,1,1,1\n");
    EXPECT_EQ(RunTrackTool({"paths", "import", "binary.trk", "list.csv"}).errors, "");
    const Track written = ReadTrack("binary.trk");
    ASSERT_EQ(written.segments.size(), 2U);
    const auto expected = TicksOf(written.segments[0], written.segments[1], written);
    ASSERT_EQ(expected.size(), 4U); // 40 pixels, every 10
    ASSERT_EQ(written.rulers.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const independent::Ruler& tick = written.rulers[i];
        EXPECT_EQ(tick.index, expected[i].index);
        EXPECT_EQ(tick.path, 0);
        EXPECT_EQ(tick.segment, 0);
        EXPECT_EQ(tick.method, 2);
        EXPECT_DOUBLE_EQ(tick.width, expected[i].width);
        EXPECT_DOUBLE_EQ(tick.x1, expected[i].x1);
        EXPECT_DOUBLE_EQ(tick.x2, expected[i].x2);
        EXPECT_DOUBLE_EQ(tick.y1, expected[i].y1);
        EXPECT_DOUBLE_EQ(tick.y2, expected[i].y2);
    }
}

TEST_F(PathsCommands, importsTheEditorsCrashFile) {
    TrackPath path;
    path.AppendPoint({{1.0 / 3.0, 0.1}, 2, 30, 40, 50});
    path.AppendPoint({{0.7, 2.0 / 3.0}, 3, 31, 41, 51});
    ASSERT_EQ(WriteCsvPathsAlone("part (crash).csv", {path}), 0);
    EXPECT_EQ(RunTrackTool({"paths", "import", "binary.trk", "part (crash).csv"}).errors, "");
    const Track written = ReadTrack("binary.trk");
    ASSERT_EQ(written.segments.size(), 2U);
    const Segment& point = written.segments[0];
    EXPECT_EQ(point.relativeX, 1.0 / 3.0);
    EXPECT_EQ(point.relativeY, 0.1);
    EXPECT_EQ(point.x, 1.0 / 3.0 * 20 + 10);
    EXPECT_EQ(point.y, 0.1 * 5 + 20);
    EXPECT_THAT((std::vector<int>{point.method, point.length, point.width, point.space}),
                ElementsAre(2, 30, 40, 50));
}

TEST_F(PathsCommands, importsWorldCoordinates) {
    WriteFile("list.csv", "X,Y,Track\n15,21.25,0\n20,22.5,0\n");
    EXPECT_EQ(RunTrackTool({"paths", "import", "binary.trk", "list.csv", "--coordinates", "world"}).errors,
              "");
    const Track written = ReadTrack("binary.trk");
    ASSERT_EQ(written.segments.size(), 2U);
    EXPECT_EQ(written.segments[1].relativeX, 0.5);
    EXPECT_EQ(written.segments[1].relativeY, 0.5);
    EXPECT_EQ(written.segments[1].x, 20);
    EXPECT_EQ(written.segments[1].length, 100); // the default of a new point
    EXPECT_EQ(written.segments[1].width, 50);
    EXPECT_EQ(written.segments[1].space, 100);
}

TEST_F(PathsCommands, exportsALineStringPerPathAsJson) {
    EXPECT_EQ(RunTrackTool({"paths", "export", "text.trk", "-o", "list.geojson"}).errors, "");
    const QJsonObject collection =
        QJsonDocument::fromJson(QByteArray::fromStdString(FileContent("list.geojson"))).object();
    EXPECT_EQ(collection[QLatin1String("type")], QStringLiteral("FeatureCollection"));
    const QJsonArray features = collection[QLatin1String("features")].toArray();
    ASSERT_EQ(features.size(), 2);
    const QJsonObject first = features[0].toObject();
    const QJsonObject geometry = first[QLatin1String("geometry")].toObject();
    EXPECT_EQ(geometry[QLatin1String("type")], QStringLiteral("LineString"));
    EXPECT_EQ(geometry[QLatin1String("coordinates")],
              (QJsonArray{QJsonArray{15, 21.25}, QJsonArray{20, 21.25}, QJsonArray{25, 21.25}}));
    const QJsonObject properties = first[QLatin1String("properties")].toObject();
    EXPECT_EQ(properties[QLatin1String("track")], 0);
    EXPECT_EQ(properties[QLatin1String("width")], (QJsonArray{60, 61, 62}));
}

TEST_F(PathsCommands, importsItsOwnJsonToTheSamePositions) {
    RunTrackTool({"paths", "export", "binary.trk", "-o", "list.json"});
    Track blank = TwoPathsTrack();
    blank.segments.clear();
    WriteFile("blank.trk", BinaryFile(blank));
    EXPECT_EQ(RunTrackTool({"paths", "import", "blank.trk", "list.json"}).errors, "");
    const Track written = ReadTrack("blank.trk");
    const Track expected = TwoPathsTrack();
    ASSERT_EQ(written.segments.size(), expected.segments.size());
    for (std::size_t i = 0; i < expected.segments.size(); ++i) {
        EXPECT_NEAR(written.segments[i].relativeX, expected.segments[i].relativeX, 1e-15);
        EXPECT_NEAR(written.segments[i].relativeY, expected.segments[i].relativeY, 1e-15);
        EXPECT_EQ(written.segments[i].path, expected.segments[i].path);
        EXPECT_EQ(written.segments[i].space, expected.segments[i].space);
    }
}

TEST_F(PathsCommands, importsOneNumberForAllSegmentsFromJson) {
    WriteFile("list.json", R"({"type": "FeatureCollection", "features": [{"type": "Feature",
        "properties": {"width": 7}, "geometry": {"type": "LineString", "coordinates": [[10, 20], [30, 25]]}}]})");
    EXPECT_EQ(RunTrackTool({"paths", "import", "binary.trk", "list.json"}).errors, "");
    const Track written = ReadTrack("binary.trk");
    ASSERT_EQ(written.segments.size(), 2U);
    EXPECT_EQ(written.segments[1].width, 7);
    EXPECT_EQ(written.segments[1].length, 100);
    EXPECT_EQ(written.segments[1].relativeX, 1);
    EXPECT_EQ(written.segments[1].relativeY, 1);
}

TEST_F(PathsCommands, importRequiresATargetForATextTrack) {
    RunTrackTool({"paths", "export", "binary.trk", "-o", "list.csv"});
    const std::string before = FileContent("text.trk");
    const ToolResult unnamed = RunTrackTool({"paths", "import", "text.trk", "list.csv"});
    EXPECT_EQ(unnamed.code, 2);
    EXPECT_THAT(unnamed.errors, HasSubstr("would become a binary one"));
    EXPECT_EQ(RunTrackTool({"paths", "import", "text.trk", "list.csv", "-o", "new.trk"}).code, 0);
    EXPECT_EQ(FileContent("text.trk"), before);
    EXPECT_EQ(ReadTrack("new.trk").cells, TwoPathsTrack().cells);
    EXPECT_EQ(ReadTrack("new.trk").segments, TwoPathsTrack().segments);
    EXPECT_EQ(RunTrackTool({"paths", "import", "text.trk", "list.csv", "-o", "text.trk"}).code, 0);
    EXPECT_EQ(ReadTrack("text.trk").segments, TwoPathsTrack().segments);
}

TEST_F(PathsCommands, importAddsAMissingPathSectionToATextTrack) {
    const std::string complete = TextFile(TwoPathsTrack());
    WriteFile("blank.trk", complete.substr(0, complete.find("Ruler")));
    RunTrackTool({"paths", "export", "binary.trk", "-o", "list.csv"});
    EXPECT_EQ(RunTrackTool({"paths", "export", "blank.trk"}).code, 3);
    EXPECT_EQ(RunTrackTool({"paths", "import", "blank.trk", "list.csv", "-o", "new.trk"}).errors, "");
    EXPECT_EQ(ReadTrack("new.trk").segments, TwoPathsTrack().segments);
}

TEST_F(PathsCommands, importRefusesAmbiguousInput) {
    ExpectRefused("", "line 0: no header line");
    ExpectRefused("0,0,0.5,0.5\n", "line 1: unknown column '0'");
    ExpectRefused("Track,RelativeX\n", "line 1: column RelativeY is required exactly once");
    ExpectRefused("Track,Track,RelativeX,RelativeY\n", "line 1: column Track is required exactly once");
    ExpectRefused("Track,RelativeX,RelativeY\n0,0.5\n", "line 2: 2 fields in place of 3");
    ExpectRefused("Track,RelativeX,RelativeY\n\n0,half,0.5\n", "line 3: RelativeX is 'half', not a number");
    ExpectRefused("Track,RelativeX,RelativeY\n0,nan,0.5\n", "line 2: the point has no place in the track");
    ExpectRefused("Track,RelativeX,RelativeY,Width\n0,0.5,0.5,1.5\n",
                  "line 2: Width is '1.5', not an integer");
    ExpectRefused("Track,RelativeX,RelativeY\n0,0.5,0.5\n2,0.5,0.5\n",
                  "line 3: Track 2 neither continues the previous Track nor starts Track 1");
    ExpectRefused("Track,Segment,RelativeX,RelativeY\n0,0,0.5,0.5\n0,2,0.5,0.5\n",
                  "line 3: Segment is 2 where 1 was expected");
    ExpectRefused("Track,RelativeX,RelativeY\n0,\\x,0.5\n", "line 2: unknown escape sequence");
    ExpectRefused("{\"type\": 1}", "not a FeatureCollection with features", "list.json");
    ExpectRefused("{", "byte 1: unterminated object", "list.json");
    const auto feature = [](const std::string& properties, const std::string& coordinates) {
        return R"({"type": "FeatureCollection", "features": [{"type": "Feature", "properties": {)" +
               properties + R"(}, "geometry": {"type": "LineString", "coordinates": [)" + coordinates +
               "]}}]}";
    };
    ExpectRefused(feature("", ""), "feature 0: no coordinates", "list.json");
    ExpectRefused(feature("", "[1]"), "feature 0: point 0 is not a pair of numbers", "list.json");
    ExpectRefused(feature("\"track\": 1", "[1, 2]"), "feature 0: its track is not 0", "list.json");
    ExpectRefused(feature("\"width\": [1, 2]", "[1, 2]"), "feature 0: width has 2 entries for 1 points",
                  "list.json");
    ExpectRefused(feature("\"width\": 2.5", "[1, 2]"), "feature 0: width is not an integer", "list.json");
    ExpectRefused(feature("\"width\": 3000000000", "[1, 2]"), "feature 0: width is not an integer",
                  "list.json");
}

TEST_F(PathsCommands, importLeavesAnUnwritableTrackUnchanged) {
    RunTrackTool({"paths", "export", "binary.trk", "-o", "list.csv"});
    const std::string before = FileContent("binary.trk");
    const ToolResult result =
        RunTrackTool({"paths", "import", "binary.trk", "list.csv", "-o", "missing/new.trk"});
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.errors, "corvane-track paths import: missing/new.trk: No such file or directory\n");
    EXPECT_EQ(FileContent("binary.trk"), before);
    EXPECT_EQ(RunTrackTool({"paths", "export", "binary.trk", "-o", "missing/list.csv"}).code, 4);
}

TEST_F(PathsCommands, importRefusesTooManyRulerMarks) {
    // 2^31 pixels in steps of one: more ticks than the limit.
    WriteFile("list.csv", "Track,RelativeX,RelativeY,Space\n0,0,0,0\n0,20000000,0,0\n");
    const std::string before = FileContent("binary.trk");
    const ToolResult result = RunTrackTool({"paths", "import", "binary.trk", "list.csv"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.errors, HasSubstr("Cannot store the ruler"));
    EXPECT_EQ(FileContent("binary.trk"), before);
}

TEST_F(PathsCommands, convertsATextTrackToBinary) {
    EXPECT_EQ(RunTrackTool({"convert", "text.trk", "new.trk"}).errors, "");
    const Track written = ReadTrack("new.trk");
    EXPECT_EQ(written.cells, TwoPathsTrack().cells);
    EXPECT_EQ(written.anchor, TwoPathsTrack().anchor);
    EXPECT_EQ(written.xOffset, 10);
    EXPECT_EQ(written.zResolution, 0.25);
    ASSERT_EQ(written.segments.size(), TwoPathsTrack().segments.size());
    EXPECT_EQ(written.segments[0], TwoPathsTrack().segments[0]);
    EXPECT_FALSE(written.rulers.empty());
}

TEST_F(PathsCommands, convertRefusesContentThatWouldBeLost) {
    const ToolResult binary = RunTrackTool({"convert", "binary.trk", "new.trk"});
    EXPECT_EQ(binary.code, 3);
    EXPECT_EQ(binary.errors, "corvane-track convert: binary.trk: already a binary track\n");
    Track high = TwoPathsTrack();
    high.heights[5] = 1e9;
    WriteFile("high.trk", TextFile(high));
    const ToolResult lost = RunTrackTool({"convert", "high.trk", "new.trk"});
    EXPECT_EQ(lost.code, 3);
    EXPECT_THAT(lost.errors, HasSubstr("row=0 column=5"));
    const std::string complete = TextFile(TwoPathsTrack());
    WriteFile("blank.trk", complete.substr(0, complete.find("Ruler")));
    EXPECT_EQ(RunTrackTool({"convert", "blank.trk", "new.trk"}).errors,
              "corvane-track convert: blank.trk: no section with paths\n");
    EXPECT_FALSE(std::filesystem::exists("new.trk"));
    EXPECT_EQ(RunTrackTool({"convert", "--without-paths", "blank.trk", "new.trk"}).code, 0);
    EXPECT_TRUE(ReadTrack("new.trk").segments.empty());
}

} // namespace
