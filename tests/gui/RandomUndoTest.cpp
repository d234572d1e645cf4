#include "CanvasFixture.h"
#include "IndependentTrack.h"
#include "RandomOperator.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"

namespace {

/// The complete state that a step must restore, number by number.
struct Snapshot {
    int finishedCount = 0;
    std::vector<std::vector<std::pair<double, double>>> points;
    std::vector<std::vector<int>> lists;

    explicit Snapshot(const TrackDocument& document) : finishedCount(document.finishedCount()) {
        for (const TrackPath& path : document.paths()) {
            auto& places = points.emplace_back();
            for (const QPointF& point : path.points)
                places.emplace_back(point.x(), point.y());
            for (const auto* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
                lists.push_back(*list);
        }
    }
    friend bool operator==(const Snapshot&, const Snapshot&) = default;
};

/// Records the paths after each step, by the number of steps before it.
class StepRecorder {
  public:
    explicit StepRecorder(TrackDocument& watched) : document(watched) {
        Record();
        QObject::connect(&document, &TrackDocument::modifiedChanged, &context, [this] { Record(); });
    }

    /// Checks that undoing and redoing every step gives the recorded paths.
    void ExpectTheSameBackAndForth() {
        QObject::disconnect(&document, nullptr, &context, nullptr);
        for (; document.canUndo(); document.undo())
            ExpectRecorded();
        ExpectRecorded();
        EXPECT_EQ(document.undoDepth(), 0);
        for (; document.canRedo(); document.redo())
            ExpectRecorded();
        ExpectRecorded();
    }

  private:
    void Record() {
        const auto depth = static_cast<std::size_t>(document.undoDepth());
        states.erase(states.begin() + static_cast<std::ptrdiff_t>(std::min(depth, states.size())),
                     states.end());
        ASSERT_EQ(states.size(), depth) << "a step was not shown";
        states.emplace_back(document);
    }
    void ExpectRecorded() {
        const auto depth = static_cast<std::size_t>(document.undoDepth());
        ASSERT_LT(depth, states.size());
        ASSERT_TRUE(Snapshot(document) == states[depth]) << "after " << depth << " steps";
    }

    TrackDocument& document;
    QObject context;
    std::vector<Snapshot> states;
};

/// The paths as a file holds them when its units are those of the canvas.
std::vector<independent::Segment> Records(const std::vector<TrackPath>& paths) {
    std::vector<independent::Segment> records;
    for (std::size_t path = 0; path < paths.size(); ++path)
        for (std::size_t point = 0; point < paths[path].points.size(); ++point)
            records.push_back({static_cast<int>(path), static_cast<int>(point), paths[path].points[point].x(),
                               paths[path].points[point].y(), paths[path].points[point].x(),
                               paths[path].points[point].y(), paths[path].methods[point],
                               paths[path].lengths[point], paths[path].widths[point],
                               paths[path].spaces[point]});
    return records;
}

/// 14 rounds of up to 900 edits, since 1,000 steps are kept; each round starts from the previous one's
/// result.
TEST(RandomUndo, undoesAndRedoesTenThousandEditsExactly) {
    CanvasWindow window;
    window.shown = true;
    RandomOperator someone(window, 4711);
    TrackDocument& document = window.canvas->document();
    std::size_t edits = 0;
    for (int round = 0; round < 14; ++round) {
        window.canvas->loadPaths({}); // a missing file: no paths and an empty history
        window.canvas->resetPaths();
        StepRecorder recorder(document);
        for (int edit = 0; edit < 900 && document.undoDepth() < UndoHistory::kMaxSteps - 20; ++edit, ++edits)
            someone.Act();
        recorder.ExpectTheSameBackAndForth();
        if (::testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GE(edits, 10'000U);
}

TEST(RandomUndo, trackSavedAfterUndoAndRedoReadsBackEqual) {
    const TemporaryFolder folder;
    const std::string track = folder.Path("a.trk");
    WriteFile(track, independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 100))));
    CanvasWindow window;
    RandomOperator someone(window, 99);
    for (int edit = 0; edit < 300; ++edit)
        someone.Act();
    TrackDocument& document = window.canvas->document();
    ASSERT_GT(document.undoDepth(), 20);
    while (document.canUndo())
        document.undo();
    for (int step = 0; step < 15; ++step)
        document.redo();
    window.canvas->SavePath(QString::fromStdString(track), QString::fromStdString(track), 1, 0, 0, 1, 1);
    EXPECT_TRUE(independent::ReadBinary(FileContent(track)).segments == Records(window.canvas->paths()));
}

} // namespace
