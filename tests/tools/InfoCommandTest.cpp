#include "ToolRun.h"

#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QJsonArray>

namespace {

using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

/// 40 x 20 cells of 0.5 x 0.25; world heights 0 to 39 + 19 x 0.25. Two paths, one cell without measurement.
Track DescribedTrack() {
    Track track = SmallTrack(PathAcross(0, 3, 0.25, 50));
    track.anchor = {1.5, -2.25, 30};
    track.cells[7] = independent::kNoMeasurement;
    track.heights[7].reset();
    return track;
}

class InfoCommand : public testing::Test {
  protected:
    TemporaryFolder folder;
};

QJsonObject InfoOf(const std::string& file) {
    const ToolResult result = RunTrackTool({"info", "--json", file});
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    const auto objects = result.Objects();
    return objects.size() == 1 ? objects.front() : QJsonObject();
}

void ExpectSample(const QJsonObject& info) {
    const auto number = [&](const char* name) { return info.value(QLatin1String(name)).toDouble(-99); };
    EXPECT_EQ(number("width"), 40);
    EXPECT_EQ(number("height"), 20);
    EXPECT_EQ(number("measuredCells"), 799);
    EXPECT_EQ(number("minHeight"), 0);
    EXPECT_EQ(number("maxHeight"), 39 + 19 * 0.25);
    EXPECT_EQ(number("xResolution"), 0.5);
    EXPECT_EQ(number("yResolution"), 0.25);
    EXPECT_EQ(number("zResolution"), 0.25);
    EXPECT_EQ(number("xOffset"), 10);
    EXPECT_EQ(number("yOffset"), 20);
    EXPECT_EQ(number("zOffset"), 0);
    EXPECT_EQ(number("anchorX"), 1.5);
    EXPECT_EQ(number("anchorY"), -2.25);
    EXPECT_EQ(number("anchorAngle"), 30);
    EXPECT_EQ(number("shownWidth"), 80); // twice as wide, since X has twice the resolution
    EXPECT_EQ(number("shownHeight"), 20);
    const QJsonArray paths = info.value(QLatin1String("paths")).toArray();
    ASSERT_EQ(paths.size(), 1);
    EXPECT_EQ(paths[0].toObject().value(QLatin1String("points")).toInt(), 3);
    // From 1/4 to 3/4 of 40 columns of 0.5.
    EXPECT_DOUBLE_EQ(paths[0].toObject().value(QLatin1String("length")).toDouble(), 10);
}

TEST_F(InfoCommand, showsTheContentInBothEncodings) {
    WriteFile("binary.trk", BinaryFile(DescribedTrack()));
    WriteFile("text.trk", TextFile(DescribedTrack()));
    const QJsonObject binary = InfoOf("binary.trk");
    ExpectSample(binary);
    EXPECT_EQ(binary.value(QLatin1String("encoding")), QStringLiteral("binary"));
    const QJsonObject text = InfoOf("text.trk");
    ExpectSample(text);
    EXPECT_EQ(text.value(QLatin1String("encoding")), QStringLiteral("text"));
    EXPECT_EQ(text.value(QLatin1String("file")), QStringLiteral("text.trk"));
}

TEST_F(InfoCommand, agreesWithTheIndependentReaderOnRealTracks) {
    const Track track = independent::ReadBinary(FileContent(TestData("fault-binary.trk")));
    const QJsonObject info = InfoOf(TestData("fault-binary.trk"));
    EXPECT_EQ(info.value(QLatin1String("width")).toInt(), track.width);
    EXPECT_EQ(info.value(QLatin1String("height")).toInt(), track.height);
    EXPECT_EQ(info.value(QLatin1String("xOffset")).toDouble(), track.xOffset);
    EXPECT_EQ(info.value(QLatin1String("anchorAngle")).toDouble(), track.anchor[2]);
    int points = 0;
    for (const auto path : info.value(QLatin1String("paths")).toArray())
        points += path.toObject().value(QLatin1String("points")).toInt();
    EXPECT_EQ(static_cast<std::size_t>(points), track.segments.size());
}

TEST_F(InfoCommand, printsReadableText) {
    WriteFile("a.trk", BinaryFile(DescribedTrack()));
    EXPECT_THAT(RunTrackTool({"info", "a.trk"}).Lines(),
                ElementsAre("a.trk", "  Encoding              binary",
                            "  Height map            40 x 20 cells, 799 measured",
                            "  Heights               0 to 43.75", "  Resolution X, Y, Z    0.5, 0.25, 0.25",
                            "  Offset X, Y, Z        10, 20, 0", "  Anchor X, Y, angle    1.5, -2.25, 30",
                            "  Shown at 100 %        80 x 20 pixels", "  Paths                 1",
                            "    1                   3 points, length 10"));
}

TEST_F(InfoCommand, reportsATextTrackWithoutPathSection) {
    const std::string complete = TextFile(DescribedTrack());
    WriteFile("a.trk", complete.substr(0, complete.find("Ruler")));
    EXPECT_TRUE(InfoOf("a.trk").value(QLatin1String("paths")).isNull());
    EXPECT_THAT(RunTrackTool({"info", "a.trk"}).output, HasSubstr("no section with paths"));
}

TEST_F(InfoCommand, showsNoHeightsWithoutMeasurements) {
    Track track = DescribedTrack();
    track.cells.assign(track.cells.size(), independent::kNoMeasurement);
    WriteFile("a.trk", BinaryFile(track));
    EXPECT_TRUE(InfoOf("a.trk").value(QLatin1String("minHeight")).isNull());
}

TEST_F(InfoCommand, continuesAfterAnUnreadableFile) {
    WriteFile("good.trk", BinaryFile(DescribedTrack()));
    WriteFile("bad.trk", BinaryFile(DescribedTrack()).substr(0, 100));
    const ToolResult result = RunTrackTool({"info", "--json", "bad.trk", "missing.trk", ".", "good.trk"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.Objects(), SizeIs(1));
    EXPECT_THAT(result.errors,
                StartsWith("corvane-track info: bad.trk: Height map of 40 x 20 cells is not in the file\n"
                           "corvane-track info: missing.trk: No such file or directory\n"
                           "corvane-track info: .: Is a directory\n"));
}

TEST_F(InfoCommand, refusesAnUnknownVersion) {
    std::string content = BinaryFile(DescribedTrack());
    content[8] = 2;
    WriteFile("a.trk", content);
    const ToolResult result = RunTrackTool({"info", "a.trk"});
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.errors, "corvane-track info: a.trk: Wrong file version (2)\n");
}

} // namespace
