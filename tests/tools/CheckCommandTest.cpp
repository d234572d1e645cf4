#include "ToolRun.h"

#include "HostileTrack.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QJsonArray>

#include <algorithm>
#include <cstring>

namespace {

using independent::Track;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CheckCommand : public testing::Test {
  protected:
    /// The lines of a check of a file with this content.
    static std::vector<std::string> LinesOf(const std::string& content) {
        WriteFile("a.trk", content);
        return RunTrackTool({"check", "a.trk"}).Lines();
    }

    TemporaryFolder folder;
};

Track CheckedTrack() {
    Track track = SmallTrack(PathAcross(0, 3, 0.25, 50));
    track.rulers = {{0, 0, 1, 1, 2, 3, 4, 1, 50}};
    return track;
}

/// The sample as text with one line, counted from 1, replaced; nothing for an empty one.
std::string WithLine(int number, const std::string& line) {
    std::string text = TextFile(CheckedTrack());
    std::size_t at = 0;
    for (int i = 1; i < number; ++i)
        at = text.find('\n', at) + 1;
    text.erase(at, text.find('\n', at) + 1 - at);
    return line.empty() ? text : text.insert(at, line + "\n");
}

/// The number of the line that starts with this text.
int LineOf(const std::string& start) {
    const std::string text = TextFile(CheckedTrack());
    const std::size_t at = text.find("\n" + start) + 1;
    return 1 +
           static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

template<typename Number>
std::string With(std::size_t place, Number number) {
    std::string content = BinaryFile(CheckedTrack());
    std::memcpy(content.data() + place, &number, sizeof number);
    return content;
}

TEST_F(CheckCommand, findsErrorsInExactlyThoseHostileTracksThatTheEditorRefuses) {
    std::vector<HostileTrack> tracks = HostileTextTracks();
    for (HostileTrack& track : HostileBinaryTracks())
        tracks.push_back(std::move(track));
    std::vector<std::string> words = {"check", "--json"};
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        words.push_back(std::to_string(i) + ".trk");
        WriteFile(words.back(), tracks[i].content);
    }
    const ToolResult result = RunTrackTool(words);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.errors, "");
    const auto reports = result.Objects();
    ASSERT_EQ(reports.size(), tracks.size());
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        SCOPED_TRACE(tracks[i].name);
        EXPECT_EQ(reports[i].value(QLatin1String("errors")).toInt() > 0, !tracks[i].Box().empty());
        // Each problem has a place: none was found only by the editor's readers.
        for (const auto problem : reports[i].value(QLatin1String("problems")).toArray()) {
            const QJsonObject object = problem.toObject();
            EXPECT_TRUE(object.contains(QLatin1String("line")) || object.contains(QLatin1String("offset")))
                << object.value(QLatin1String("text")).toString().toStdString();
        }
    }
}

TEST_F(CheckCommand, acceptsGoodTracks) {
    WriteFile("binary.trk", BinaryFile(CheckedTrack()));
    WriteFile("text.trk", TextFile(CheckedTrack()));
    const std::string samples = std::string(CORVANE_SAMPLES) + "/tracks/";
    const ToolResult result =
        RunTrackTool({"check", "--strict", "binary.trk", "text.trk", TestData("fault.trk"),
                      TestData("fault-binary.trk"), samples + "cover.trk", samples + "housing-binary.trk"});
    EXPECT_EQ(result.code, 0) << result.output;
    EXPECT_THAT(result.Lines(), ElementsAre("binary.trk: good", "text.trk: good", HasSubstr(": good"),
                                            HasSubstr(": good"), HasSubstr(": good"), HasSubstr(": good")));
}

TEST_F(CheckCommand, reportsEveryProblemOfATextTrackWithItsLine) {
    const int map = LineOf("YX,");
    const int points = LineOf("Segment") + 2;
    std::string content = WithLine(points + 1, "0,1,0,0,0.5,0.25,1,1,1"); // from the end, so that
    const auto replace = [&](int number, const std::string& line) {       // the numbers remain valid
        std::size_t at = 0;
        for (int i = 1; i < number; ++i)
            at = content.find('\n', at) + 1;
        content.replace(at, content.find('\n', at) - at, line);
    };
    replace(points, "0,0,0,0,zero,0.25,1,1,1,1");
    replace(map + 3, "20.5,1,2");
    replace(map + 2, "20.25,\\q");
    replace(map + 1, "20,high" + std::string(39, ','));
    const std::string at = "a.trk: line ";
    EXPECT_THAT(LinesOf(content),
                ElementsAre(at + std::to_string(map + 1) +
                                ": warning: the height in column 0 is 'high' and read as 0",
                            StartsWith(at + std::to_string(map + 2) + ": error: "),
                            at + std::to_string(map + 3) +
                                ": warning: 2 cells in a row of 40; the others have no measurement",
                            at + std::to_string(points) + ": warning: RelativeX is 'zero' and read as 0",
                            AllOf(StartsWith(at + std::to_string(points) + ": warning: X, Y are 0, 0 where"),
                                  HasSubstr("mean 10, 21.25")),
                            at + std::to_string(points + 1) + ": error: 9 fields for a point, which has 10",
                            at + std::to_string(points + 2) + ": warning: Segment 2 where 1 was expected"));
}

TEST_F(CheckCommand, reportsMissingAndSurplusRowsOfATextTrack) {
    const int map = LineOf("YX,");
    EXPECT_THAT(LinesOf(WithLine(map + 5, "")), ElementsAre("a.trk: line " + std::to_string(map + 20) +
                                                            ": error: 19 rows in a height map of 20"));
    EXPECT_THAT(LinesOf(WithLine(map + 20, "24.75,1\n25,1")),
                testing::Contains("a.trk: line " + std::to_string(map + 21) +
                                  ": error: a row too many in a height map of 20"));
}

TEST_F(CheckCommand, reportsTheProblemsOfABinaryTrackWithTheirOffsets) {
    const std::string at = "a.trk: byte ";
    EXPECT_THAT(LinesOf(With(8, std::int32_t{7})),
                ElementsAre(at + "8: error: version 7, whose layout is unknown"));
    EXPECT_THAT(LinesOf(With(28, 0.0)),
                ElementsAre(at + "28: warning: a resolution of 0",
                            at + "68: error: the height map has no two different heights"));
    EXPECT_THAT(LinesOf(With(60, std::int32_t{-1})),
                ElementsAre(at + "60: error: a height map with -1 columns"));
    // 40 x 20 cells, the anchor, the rulers' tag, their number.
    const std::size_t rulers = 68 + 1600 + 28 + 4;
    EXPECT_THAT(LinesOf(With(rulers, std::int32_t{1000})),
                ElementsAre(at + std::to_string(rulers) + ": error: 1000 rulers, which are not in the file"));
    EXPECT_THAT(LinesOf(With(rulers + 4 + 8, std::int32_t{2})),
                ElementsAre(at + std::to_string(rulers + 4) +
                                ": warning: a ruler of segment 2 of Track 0, which does not exist",
                            "a.trk: good, with 1 warning"));
    const std::size_t points = rulers + 4 + 56 + 4;
    EXPECT_THAT(LinesOf(With(points, std::int32_t{4})),
                ElementsAre(at + std::to_string(points) + ": error: 4 points, which are not in the file"));
    EXPECT_THAT(LinesOf(With(points + 4 + 56, std::int32_t{3})),
                ElementsAre(at + std::to_string(points + 4 + 56) +
                                ": warning: Track 3 neither continues Track 0 nor starts the next: the point "
                                "is read as one of Track 0",
                            "a.trk: good, with 1 warning"));
    const std::string complete = BinaryFile(CheckedTrack());
    EXPECT_THAT(LinesOf(complete + "abc"),
                ElementsAre(at + std::to_string(complete.size()) +
                                ": warning: 3 bytes after the last block, which are not read",
                            "a.trk: good, with 1 warning"));
    EXPECT_THAT(LinesOf(complete.substr(0, 50)),
                ElementsAre(at + "50: error: the file ends within the information"));
}

TEST_F(CheckCommand, endsWith1ForWarningsOnlyIfStrict) {
    WriteFile("a.trk", BinaryFile(CheckedTrack()) + "abc");
    EXPECT_EQ(RunTrackTool({"check", "a.trk"}).code, 0);
    EXPECT_EQ(RunTrackTool({"check", "--strict", "a.trk"}).code, 1);
}

TEST_F(CheckCommand, endsWith3ForAMissingFile) {
    const ToolResult result = RunTrackTool({"check", "--json", "missing.trk"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.Lines(), IsEmpty());
    EXPECT_EQ(result.errors, "corvane-track check: missing.trk: No such file or directory\n");
}

} // namespace
