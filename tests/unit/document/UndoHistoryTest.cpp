#include "document/UndoHistory.h"

#include <gtest/gtest.h>

namespace {

PathList EmptyList() {
    return PathList([](const PathsChange&) {});
}

TrackPath PathOf(std::size_t points) {
    TrackPath path;
    path.points.resize(points);
    for (auto* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
        list->resize(points, 1);
    return path;
}

/// Bytes of a path's points and lists.
constexpr std::size_t kBytesOfAPoint = sizeof(QPointF) + 4 * sizeof(int);

TEST(UndoHistory, dropsTheOldestStepsBeyondTheMemoryLimit) {
    PathList paths = EmptyList();
    constexpr std::size_t kPoints = 1000;
    UndoHistory history(paths, UndoHistory::kMaxSteps, 3 * kPoints * kBytesOfAPoint);
    for (int path = 0; path < 5; ++path)
        paths.InsertPath(path, PathOf(kPoints));
    for (int step = 0; step < 5; ++step)
        history.Push(std::make_unique<RemovePathStep>(paths.Count() - 1));
    EXPECT_LE(history.Bytes(), 3 * kPoints * kBytesOfAPoint);
    int undone = 0;
    for (; history.CanUndo(); ++undone)
        history.Undo();
    EXPECT_EQ(undone, 2); // a third one's bytes plus those of the steps themselves exceed the limit
    EXPECT_EQ(paths.Count(), 2);
    history.Undo();
    EXPECT_EQ(paths.Count(), 2);
    for (; history.CanRedo(); --undone)
        history.Redo();
    EXPECT_EQ(undone, 0);
    EXPECT_EQ(paths.Count(), 0);
}

TEST(UndoHistory, stepLargerThanTheLimitCannotBeUndone) {
    PathList paths = EmptyList();
    UndoHistory history(paths, UndoHistory::kMaxSteps, 100);
    paths.InsertPath(0, PathOf(1000));
    history.Push(std::make_unique<RemovePathStep>(0));
    EXPECT_EQ(paths.Count(), 0);
    EXPECT_FALSE(history.CanUndo());
    EXPECT_EQ(history.Bytes(), 0U);
}

TEST(UndoHistory, doesNotMergeIntoADroppedStep) {
    PathList paths = EmptyList();
    UndoHistory history(paths, UndoHistory::kMaxSteps, 0);
    paths.InsertPath(0, PathOf(2));
    history.Push(std::make_unique<MovePointStep>(PointIndex{0, 0}, QPointF(0.5, 0.5)));
    history.Push(std::make_unique<MovePointStep>(PointIndex{0, 0}, QPointF(0.6, 0.6)));
    EXPECT_EQ(paths.Paths()[0].points[0], QPointF(0.6, 0.6));
    EXPECT_FALSE(history.CanUndo());
}

TEST(UndoHistory, givesEachContentItsOwnRevision) {
    PathList paths = EmptyList();
    UndoHistory history(paths);
    const auto empty = history.CurrentRevision();
    history.Push(std::make_unique<AddPathStep>(PathPoint{}));
    const auto one = history.CurrentRevision();
    EXPECT_NE(one, empty);
    history.Push(std::make_unique<ClosePathsStep>(1));
    EXPECT_EQ(history.CurrentRevision(), one) << "no file says which paths are closed";
    history.Undo();
    history.Undo();
    EXPECT_EQ(history.CurrentRevision(), empty);
    history.Push(std::make_unique<AddPathStep>(PathPoint{}));
    EXPECT_NE(history.CurrentRevision(), one);
    EXPECT_NE(history.CurrentRevision(), empty);
}

TEST(UndoHistory, clearingKeepsTheRevisionOfUnchangedContent) {
    PathList paths = EmptyList();
    UndoHistory history(paths);
    history.Push(std::make_unique<AddPathStep>(PathPoint{}));
    const auto before = history.CurrentRevision();
    history.Clear(false);
    EXPECT_EQ(history.CurrentRevision(), before);
    EXPECT_EQ(history.StepCount(), 0);
    history.Clear(true);
    EXPECT_NE(history.CurrentRevision(), before);
}

} // namespace
