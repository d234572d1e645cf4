#include "OperatingTest.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QStatusBar>

#include <cmath>
#include <filesystem>

namespace {

/// A map of 40 x 30 cells, stretched to twice its width, with cells that were not measured.
independent::Track ReadTrack() {
    independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100), 40, 30);
    track.zResolution = 0.01;
    track.zOffset = -5;
    for (std::size_t cell = 0; cell < track.cells.size(); ++cell) {
        track.cells[cell] = static_cast<std::int16_t>(int(cell) * 55 - 32767);
        track.heights[cell] = track.cells[cell] * 0.01 - 5;
    }
    for (const std::size_t cell : {0U, 41U, 1199U}) {
        track.cells[cell] = independent::kNoMeasurement;
        track.heights[cell].reset();
    }
    return track;
}

class ReadOutsTest : public OperatingTest {
  protected:
    ReadOutsTest() : OperatingTest(ReadTrack()) { showPercent(400); }

    std::string position() { return text("label_position"); }
    std::string height() { return text("label_height"); }
    std::string lengths() { return text("label_drawnLength"); }

    /// The raw value of a cell according to the display; none without a measurement.
    std::optional<long> shownRaw(const independent::Track& track) {
        if (height() == "no measurement")
            return std::nullopt;
        EXPECT_NE(height(), "");
        return std::lround((std::stod(height()) - track.zOffset) / track.zResolution);
    }

    /// Moves over every cell, corners included, and compares the display with the track.
    void expectHeightsOf(const independent::Track& track) {
        for (int row = 0; row < track.height; ++row)
            for (int column = 0; column < track.width; ++column) {
                const auto cell = static_cast<std::size_t>(row) * static_cast<std::size_t>(track.width) +
                                  static_cast<std::size_t>(column);
                const std::int16_t raw = track.cells[cell];
                const double cellWidth = double(canvas().width()) / track.width;
                const double cellHeight = double(canvas().height()) / track.height;
                const QPointF corner(std::ceil(column * cellWidth), std::ceil(row * cellHeight));
                mouse().Move(corner);
                const auto expected =
                    raw == independent::kNoMeasurement ? std::nullopt : std::optional<long>(raw);
                ASSERT_EQ(shownRaw(track), expected) << column << " " << row << ": " << height();
                mouse().Move(corner + QPointF(cellWidth - 1, cellHeight - 1));
                ASSERT_EQ(shownRaw(track), expected) << column << " " << row << ": " << height();
            }
    }
};

TEST_F(ReadOutsTest, arePermanentOfFixedWidthAndWithoutFocus) {
    std::vector<int> places;
    for (const char* const name : {"label_position", "label_height", "label_drawnLength", "label_state"})
        places.push_back(find<QLabel>(name).mapTo(window.get(), QPoint()).x());
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    const int before = find<QLabel>("label_height").width();
    mouse().Move({100.0, 70.0});
    for (const char* const name : {"label_position", "label_height", "label_drawnLength"}) {
        EXPECT_EQ(find<QLabel>(name).focusPolicy(), Qt::NoFocus);
        EXPECT_EQ(find<QLabel>(name).minimumWidth(), find<QLabel>(name).maximumWidth());
    }
    EXPECT_EQ(find<QLabel>("label_height").width(), before);
    EXPECT_LE(window->minimumSizeHint().width(), 845);
}

TEST_F(ReadOutsTest, showTheCursorPosition) {
    // 40 x 30 cells of 0.5 x 0.25 from (10, 20), shown 320 x 120 pixels at 400 %.
    ASSERT_EQ(canvas().size(), QSize(320, 120));
    mouse().Move({80.0, 30.0});
    EXPECT_EQ(position(), "x 15.000, y 21.875");
    mouse().Move({0.0, 0.0});
    EXPECT_EQ(position(), "x 10.000, y 20.000");
    mouse().Move({319.0, 119.0});
    EXPECT_EQ(position(), "x 29.938, y 27.438");
    mouse().Move({-4.0, 20.0});
    EXPECT_EQ(position(), "") << "outside the map";
    EXPECT_EQ(height(), "");
}

TEST_F(ReadOutsTest, showExactRawHeightsOfABinaryTrack) {
    expectHeightsOf(ReadTrack());
}

TEST_F(ReadOutsTest, showExactRawHeightsOfATextTrack) {
    WriteFile(folder.Path("text.trk"), independent::TextFile(ReadTrack()));
    loadExternal(folder.Path("text.trk"));
    showPercent(400);
    mouse().Move({100.0, 70.0});
    ASSERT_TRUE(QTest::qWaitFor([this] { return !height().empty(); }));
    expectHeightsOf(ReadTrack());
}

TEST_F(ReadOutsTest, showHeightsBeyondSixteenBits) {
    WriteFile(folder.Path("text.trk"), "Info\nheader\n1,1,0.001,0,0,0,2,2\nYX,0,1\n0,123456.789,-40000.125\n"
                                       "1,,5\nEnd\nSegment\nheader\nEnd\n");
    loadExternal(folder.Path("text.trk"));
    canvas().resize(100, 100);
    mouse().Move({20.0, 20.0});
    ASSERT_TRUE(QTest::qWaitFor([this] { return !height().empty(); }));
    EXPECT_EQ(height(), "123456.789");
    mouse().Move({80.0, 20.0});
    EXPECT_EQ(height(), "-40000.125");
    mouse().Move({20.0, 80.0});
    EXPECT_EQ(height(), "no measurement");
}

TEST_F(ReadOutsTest, followTheTrackThroughASave) {
    WriteFile(folder.Path("text.trk"), independent::TextFile(ReadTrack()));
    loadExternal(folder.Path("text.trk"));
    showPercent(400);
    std::filesystem::create_directories(kTracks);
    operate("Save"); // converts it to a binary track with raw heights truncated toward zero
    ASSERT_EQ(status(), "Save successfully.");
    expectHeightsOf(independent::ReadBinary(FileContent(kTracks + "text.trk")));
}

TEST_F(ReadOutsTest, showNoHeightsOfAFileThatAnotherProgramChanged) {
    WriteFile(folder.Path("a.trk"), "something else");
    mouse().Move({100.0, 70.0});
    EXPECT_NE(position(), "");
    EXPECT_EQ(height(), "");
}

TEST_F(ReadOutsTest, showLengthsWhileAPathIsDrawn) {
    EXPECT_EQ(lengths(), "");
    // The canvas is 320 x 120 pixels for 20 x 7.5 world units: 16 pixels a unit.
    mouse().Press({32.0, 32.0});
    mouse().Move({80.0, 96.0}); // 3 across and 4 down
    EXPECT_EQ(lengths(), "segment 5.000, path 5.000");
    mouse().Release({80.0, 96.0});
    mouse().Move({96.0, 96.0});
    EXPECT_EQ(lengths(), "segment 1.000, path 6.000") << "where a click would put the next point";
    mouse().DoubleClick({80.0, 96.0});
    mouse().Move({96.0, 90.0});
    EXPECT_EQ(lengths(), "") << "the path is closed";
}

TEST_F(ReadOutsTest, showLengthsWhileAPointIsDragged) {
    // Points at x = 80, 160, 240 in the middle: 5 units from each other.
    mouse().Move(at(0, 2));
    EXPECT_EQ(lengths(), "");
    mouse().Press(at(0, 2));
    mouse().Move({256.0, 60.0});
    EXPECT_EQ(lengths(), "segment 6.000, path 11.000");
    mouse().Release({256.0, 60.0});
    mouse().Move({256.0, 30.0});
    EXPECT_EQ(lengths(), "");
    key(Qt::Key_Right, Qt::ShiftModifier); // ten cells of 0.5, but the margin is before
    EXPECT_EQ(lengths(), "segment 9.375, path 14.375");
    EXPECT_EQ(position(), "x 29.375, y 23.750") << "of the moved point";
}

TEST_F(ReadOutsTest, ctrlCCopiesThePosition) {
    mouse().Move({80.0, 30.0});
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "15.000, 21.875");
}

TEST_F(ReadOutsTest, areEmptyWithoutATrackAndWithoutACursor) {
    mouse().Move({80.0, 30.0});
    ASSERT_NE(position(), "");
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&canvas(), &leave);
    EXPECT_EQ(position(), "");
    mouse().Move({80.0, 30.0});
    click("toolButton_reset");
    EXPECT_EQ(position(), "");
    EXPECT_EQ(height(), "");
}

} // namespace
