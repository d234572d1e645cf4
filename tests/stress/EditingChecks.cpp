#include "EditingChecks.h"

#include "DocumentSamples.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

bool IsFinite(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

template<typename Points>
bool AreFinite(const Points& points) {
    return std::all_of(points.begin(), points.end(), IsFinite);
}

void CheckMarks(const RulerMarks& marks) {
    ASSERT_EQ(marks.tickStarts.size(), marks.tickEnds.size());
    ASSERT_EQ(marks.tickStarts.size(), marks.bands.size());
    ASSERT_TRUE(AreFinite(marks.tickStarts));
    ASSERT_TRUE(AreFinite(marks.tickEnds));
    for (const RulerMarks::Band& band : marks.bands)
        ASSERT_TRUE(AreFinite(band));
}

void CheckPath(const TrackPath& path, bool rulerShown) {
    const std::size_t points = path.points.size();
    ASSERT_GT(points, 0U);
    ASSERT_TRUE(AreFinite(path.points));
    for (const auto* list : {&path.methods, &path.lengths, &path.widths, &path.spaces}) {
        ASSERT_EQ(list->size(), points);
        for (const int value : *list) {
            ASSERT_GE(value, 0);
            ASSERT_LE(value, kMaxTyped);
        }
    }
    for (const int method : path.methods)
        ASSERT_EQ(method, 1);
    // While the ruler is hidden, the marks from a save may be older than the points.
    const bool upToDate = path.rulerMarks.empty() || path.rulerMarks.size() == points - 1;
    EXPECT_TRUE(upToDate || !rulerShown) << path.rulerMarks.size() << " marks of " << points << " points";
    for (const RulerMarks& marks : path.rulerMarks)
        CheckMarks(marks);
}

} // namespace

void CheckEditing(const QMaskWidget& canvas, bool rulerShown) {
    const EditingState& state = canvas.editingState();
    const std::vector<TrackPath>& paths = canvas.paths();
    const auto count = static_cast<int>(paths.size());
    EXPECT_GE(canvas.document().finishedCount(), 0);
    EXPECT_LE(canvas.document().finishedCount(), count);
    EXPECT_GE(state.currentPath, 0);
    EXPECT_GE(state.currentSegment, 0);
    EXPECT_TRUE(IsFinite(state.rubberPoint));
    EXPECT_TRUE(IsFinite(state.dragPoint));
    ASSERT_GE(state.hoverPath, 0);
    ASSERT_GE(state.hoverPoint, 0);
    if (!state.dragPoint.isNull()) {
        ASSERT_LT(state.hoverPath, count);
        const TrackPath& hovered = paths[static_cast<std::size_t>(state.hoverPath)];
        ASSERT_LT(static_cast<std::size_t>(state.hoverPoint), hovered.points.size());
        EXPECT_EQ(hovered.points[static_cast<std::size_t>(state.hoverPoint)], state.dragPoint);
    }
    for (const TrackPath& path : paths)
        CheckPath(path, rulerShown);
}

void CheckSaved(const std::string& file, const independent::Track& map, const std::vector<TrackPath>& paths) {
    const independent::Track saved = independent::ReadBinary(file);
    ASSERT_EQ(saved.cells.size(), map.cells.size());
    const auto [other, cell] = std::mismatch(saved.cells.begin(), saved.cells.end(), map.cells.begin());
    EXPECT_TRUE(other == saved.cells.end())
        << "cell " << cell - map.cells.begin() << " is " << *other << " in place of " << *cell;
    EXPECT_EQ(saved.width, map.width);
    EXPECT_EQ(saved.xResolution, map.xResolution);
    EXPECT_EQ(saved.yOffset, map.yOffset);
    independent::Track expected;
    SetRecords(expected, paths,
               {std::min(map.xResolution, map.yResolution), map.xOffset, map.yOffset,
                map.width * map.xResolution, map.height * map.yResolution});
    EXPECT_TRUE(saved.segments == expected.segments)
        << saved.segments.size() << " records of " << expected.segments.size() << " points";
    EXPECT_TRUE(saved.rulers == expected.rulers)
        << saved.rulers.size() << " records of " << expected.rulers.size() << " ticks";
}

unsigned CheckKept(const std::string& folder) {
    constexpr unsigned kMaxCopies = 50;
    unsigned copies = 0;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        const std::string name = entry.path().filename();
        copies += name.front() == '.' ? 0 : 1;
        if (name.ends_with("(unsaved).trk")) {
            EXPECT_NO_THROW(static_cast<void>(independent::ReadBinary(FileContent(entry.path())))) << name;
        }
    }
    EXPECT_LE(copies, kMaxCopies);
    return copies;
}

bool IsKnownMessage(const std::string& text) {
    static const QRegularExpression known(QRegularExpression::anchoredPattern(QStringLiteral(
        "Please load a track file firstly\\."
        "|[A-Z_0-9a-z ]+ - ("
        "Failed to read (basic information|height map|path information|the original file|the target file)\\."
        "|Failed to delete \\./.*"
        "|Please (open a backup file|connect to Ostra server or load a backup file) firstly\\."
        "|Please select a sensor server\\."
        "|Failed to (dis)?connect the OstraServer \\(127\\.0\\.0\\.1\\)\\.?"
        "|Failed to call the (Backup|Restore) request\\."
        "|Failed to (get the status of|set) the replay mode\\."
        "|The client hasn't connected to any Ostra Server\\."
        "|.* (doesn't exist|is empty|is not a directory)\\."
        "|Failed to (construct|open|write|read item -|open file -|open the file -|create the directory -"
        "|list files in|list directories in|delete the existing directory -) .*)")));
    return known.match(QString::fromStdString(text)).hasMatch();
}
