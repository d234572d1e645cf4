#include "WindowTest.h"

#include <QSlider>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::SizeIs;

namespace fs = std::filesystem;

const std::string kNoInfo = "ERROR_TRACK - Failed to read basic information.";
const std::string kNoMap = "ERROR_TRACK - Failed to read height map.";
const std::string kNoPaths = "ERROR_TRACK - Failed to read path information.";

/// `text` with the first `from` replaced.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    if (place == std::string::npos)
        throw std::runtime_error("nothing to replace: " + from);
    return text.replace(place, from.size(), to);
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line + "\n");
    return lines;
}

/// Damaged tracks are loaded by the real operation. The window has a valid track open
/// before, and continues to work with it, or with the next one.
class BadTracks : public WindowTest {
  protected:
    void SetUp() override {
        openWindow();
        WriteFile(folder.Path("good.trk"), text);
        loadGood();
    }

    void loadGood() {
        loadExternal(folder.Path("good.trk"));
        ASSERT_EQ(status(), "Load successfully.");
        ASSERT_THAT(paths(), SizeIs(1));
        expectNoBox();
    }

    /// Loads the content. @return the text of the "Error" box, empty when it loaded
    std::string loadContent(const std::string& content) {
        WriteFile(folder.Path("bad.trk"), content);
        return load(folder.Path("bad.trk"));
    }

    std::string load(const std::string& path) {
        (void)log.Lines();
        loadExternal(path);
        lines = log.Lines();
        const std::vector<SeenBox> boxes = answers.takeBoxes();
        EXPECT_LE(boxes.size(), 1U);
        EXPECT_EQ(find<QComboBox>("comboBox_operation").currentIndex(), 0);
        if (boxes.empty())
            return {};
        EXPECT_EQ(boxes[0].title, QStringLiteral("Error"));
        EXPECT_EQ(lines.back(), "ERROR: (ERROR_TRACK) " + boxes[0].text.toStdString().substr(14));
        operate("Save");
        EXPECT_EQ(answers.takeBoxes().at(0).text, QStringLiteral("Please load a track file firstly."));
        return boxes[0].text.toStdString();
    }

    /// After a failure before the picture is replaced, the old one can still be edited.
    void expectOldTrackUsable() {
        EXPECT_EQ(canvas().pixmap(Qt::ReturnByValue).size(), QSize(40, 20));
        ASSERT_THAT(paths(), SizeIs(1));
        type("lineEdit_lineLength", "77");
        EXPECT_EQ(paths()[0].lengths[0], 77);
        auto& slider = find<QSlider>("horizontalSlider_resizeImage");
        slider.setValue(slider.value() == 20 ? 21 : 20);
        EXPECT_GT(canvas().width(), 0);
    }

    const independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
    const std::string text = independent::TextFile(track);
    const std::string binary = independent::BinaryFile(track);
    std::vector<std::string> lines; ///< of the log, from the last load
};

TEST_F(BadTracks, reportsEmptyFile) {
    EXPECT_EQ(loadContent(""), kNoInfo);
    EXPECT_THAT(lines, Contains("ERROR: No height map data"));
    expectOldTrackUsable();
    loadGood();
}

TEST_F(BadTracks, reportsTextFileTruncatedAtAnyLine) {
    const std::vector<std::string> all = LinesOf(text);
    const auto lineWith = [&all](const std::string& start) {
        const auto found = std::find_if(
            all.begin(), all.end(), [&start](const std::string& line) { return line.rfind(start, 0) == 0; });
        return static_cast<std::size_t>(found - all.begin());
    };
    const std::size_t mapHeader = lineWith("YX");
    const std::size_t mapEnd = mapHeader + 1 + static_cast<std::size_t>(track.height);
    const std::size_t anchorHeader = lineWith("Anchor");
    const std::size_t pathHeader = lineWith("Segment");
    std::string content;
    for (std::size_t kept = 0; kept < all.size(); ++kept) {
        const std::string box = loadContent(content);
        if (kept <= mapHeader)
            EXPECT_EQ(box, kNoInfo) << kept;
        else if (kept < mapEnd)
            EXPECT_EQ(box, kNoMap) << kept;
        else if (kept == anchorHeader + 1 || kept == anchorHeader + 2)
            EXPECT_EQ(box, kNoInfo) << kept; // an announced anchor that is missing
        else if (kept <= pathHeader)
            EXPECT_EQ(box, kNoPaths) << kept;
        else
            EXPECT_EQ(box, "") << kept;
        content += all[kept];
    }
    loadGood();
}

TEST_F(BadTracks, reportsTruncatedBinaryFile) {
    constexpr std::size_t kHeader = 68;
    for (std::size_t kept = 0; kept < kHeader; ++kept)
        EXPECT_EQ(loadContent(binary.substr(0, kept)), kNoInfo) << kept;
    expectOldTrackUsable();
    const std::size_t mapEnd = independent::BinaryHead(track).size();
    for (std::size_t kept = kHeader; kept < mapEnd; kept += 171)
        EXPECT_THAT(loadContent(binary.substr(0, kept)), AnyOf(kNoInfo, kNoMap)) << kept;
    expectOldTrackUsable();
    for (std::size_t kept = mapEnd; kept < binary.size(); kept += 7)
        EXPECT_THAT(loadContent(binary.substr(0, kept)), AnyOf(kNoInfo, kNoPaths, "")) << kept;
    loadGood();
}

TEST_F(BadTracks, reportsInfoLinesOfSevenAndNineFields) {
    EXPECT_EQ(loadContent(Replaced(text, ",40,20\n", ",40\n")), kNoInfo);
    EXPECT_THAT(lines, Contains("ERROR: Invalid item count=7 for height map info extraction"));
    EXPECT_EQ(loadContent(Replaced(text, ",40,20\n", ",40,20,1\n")), kNoInfo);
    EXPECT_THAT(lines, Contains("ERROR: Invalid item count=9 for height map info extraction"));
    expectOldTrackUsable();
}

TEST_F(BadTracks, reportsMapHeaderOneValueShortOrLong) {
    EXPECT_EQ(loadContent(Replaced(text, ",40,20\n", ",41,20\n")), kNoInfo);
    EXPECT_THAT(lines, Contains(HasSubstr(" for column world positions")));
    EXPECT_EQ(loadContent(Replaced(text, ",40,20\n", ",39,20\n")), kNoInfo);
    EXPECT_THAT(lines, Contains(HasSubstr(" for column world positions")));
    expectOldTrackUsable();
}

TEST_F(BadTracks, reportsBadEscapesAndOpenQuotes) {
    EXPECT_EQ(loadContent(Replaced(text, "YX,", "YX\\q,")), kNoInfo);
    EXPECT_THAT(lines, Contains(HasSubstr("[ReadInfoFromCsv] (EXCEPTION) ")));
    EXPECT_THAT(loadContent(Replaced(text, "YX,", "\"YX,")), kNoInfo);
    expectOldTrackUsable();
}

TEST_F(BadTracks, reportsImpossibleSizesInText) {
    for (const char* sizes : {"0,20", "40,0", "-1,20", "40,-1", "2147483647,20", "40,2147483647",
                              "2147483647,2147483647", "65536,65536"})
        EXPECT_THAT(loadContent(Replaced(text, ",40,20\n", "," + std::string(sizes) + "\n")),
                    AnyOf(kNoInfo, kNoMap))
            << sizes;
    expectOldTrackUsable();
    loadGood();
}

TEST_F(BadTracks, reportsImpossibleSizesInBinaryFile) {
    constexpr std::size_t kWidthPlace = 60;
    for (const std::int32_t width : {0, -1, 2147483647, 65536})
        for (const std::int32_t height : {0, -1, 2147483647, 65536}) {
            std::string content = binary;
            content.replace(kWidthPlace, 4, reinterpret_cast<const char*>(&width), 4);
            content.replace(kWidthPlace + 4, 4, reinterpret_cast<const char*>(&height), 4);
            EXPECT_THAT(loadContent(content), AnyOf(kNoInfo, kNoMap)) << width << " x " << height;
        }
    expectOldTrackUsable();
    loadGood();
}

TEST_F(BadTracks, reportsMapOfEqualHeights) {
    independent::Track flat = track;
    flat.heights.assign(flat.heights.size(), 3.0);
    flat.cells.assign(flat.cells.size(), 12);
    for (const std::string& content : {independent::TextFile(flat), independent::BinaryFile(flat)}) {
        EXPECT_EQ(loadContent(content), kNoMap);
        EXPECT_THAT(lines, Contains("ERROR: Invalid depth range for pixel retrieval from CSV"));
        EXPECT_EQ(WindowTest::text("lineEdit_heightMin"), "3"); // shown as soon as they are known
    }
    expectOldTrackUsable();
}

TEST_F(BadTracks, nonFiniteHeightsCountAsUnmeasured) {
    std::string content = text;
    const std::string row = LinesOf(text)[4]; // the first row of the map
    content = Replaced(content, row, Replaced(row, ",1,2,3,", ",nan,inf,-1e400,"));
    EXPECT_EQ(loadContent(content), "");
    EXPECT_EQ(WindowTest::text("lineEdit_heightMin"), "0");
    EXPECT_EQ(WindowTest::text("lineEdit_heightMax"), "43.75");
    const QImage shown = canvas().pixmap(Qt::ReturnByValue).toImage();
    for (int column = 1; column <= 3; ++column)
        EXPECT_EQ(shown.pixelColor(column, 0), QColor(0, 0, 0)) << column;
}

TEST_F(BadTracks, otherVersionLoadsNothing) {
    std::string content = binary;
    content[8] = 2;
    EXPECT_EQ(loadContent(content), kNoMap);
    expectOldTrackUsable();
}

TEST_F(BadTracks, magicWordAtAnyOffsetLoads) {
    std::string content = binary;
    content.replace(0, 8, "xxTracyy");
    EXPECT_EQ(loadContent(content), "");
    EXPECT_THAT(paths(), SizeIs(1));
    content.replace(0, 8, "Track!!!");
    EXPECT_EQ(loadContent(content), "");
}

TEST_F(BadTracks, reportsMissingPathRecords) {
    const std::size_t count = independent::BinaryHead(track).size() +
                              independent::BinaryAnchor(track).size() +
                              independent::BinaryRulers(track).size() + 4;
    for (const std::int32_t announced : {4, 1000, 2147483647, -1}) {
        std::string content = binary;
        content.replace(count, 4, reinterpret_cast<const char*>(&announced), 4);
        EXPECT_EQ(loadContent(content), kNoPaths) << announced;
    }
    loadGood();
}

TEST_F(BadTracks, loadsLineOfTenMegabytes) {
    constexpr std::size_t kLong = std::size_t{10} * 1024 * 1024;
    EXPECT_EQ(loadContent(std::string(kLong, 'x')), kNoInfo);
    EXPECT_EQ(loadContent(std::string(kLong, ',')), kNoInfo);
    EXPECT_THAT(loadContent(Replaced(text, "YX,", "YX" + std::string(kLong, ',') + ",")), kNoInfo);
    expectOldTrackUsable();
    loadGood();
}

TEST_F(BadTracks, reportsMissingFileAndFolder) {
    makeBackup(folder.Path("x.osbak"), {{"missing.trk", ""}, {"keep.trk", text}});
    loadBackup(folder.Path("x.osbak"));
    fs::remove(kTracks + "missing.trk");
    for (int turn = 0; turn < 2; ++turn) { // first missing, then a folder
        choose("comboBox_file", "missing.trk");
        (void)log.Lines();
        operate("Load");
        expectErrorBox(kNoInfo);
        EXPECT_THAT(log.Lines(), Contains("ERROR: Could not find file (" + kTracks + "missing.trk)"));
        fs::create_directories(kTracks + "missing.trk");
    }
    choose("comboBox_file", "keep.trk");
    operate("Load");
    EXPECT_EQ(status(), "Load successfully.");
}

TEST_F(BadTracks, oddNamesAreLoggedUnchanged) {
    const std::string odd = folder.Path("a %s%n 'q' <b>ß 日本.trk");
    WriteFile(odd, "x");
    EXPECT_EQ(load(odd), kNoInfo);
    fs::remove(odd);
    makeBackup(folder.Path("x.osbak"), {{"%s%n \"q\" <b>ß.trk", "x"}});
    loadBackup(folder.Path("x.osbak"));
    choose("comboBox_file", "%s%n \"q\" <b>ß.trk");
    fs::remove(kTracks + "%s%n \"q\" <b>ß.trk");
    (void)log.Lines();
    operate("Load");
    expectErrorBox(kNoInfo);
    EXPECT_THAT(log.Lines(), Contains("ERROR: Could not find file (" + kTracks + "%s%n \"q\" <b>ß.trk)"));
}

} // namespace
