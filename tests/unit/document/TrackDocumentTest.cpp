#include "document/TrackDocument.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using ::testing::ElementsAre;

TrackPath Path(const std::vector<QPointF>& points, int first = 10) {
    TrackPath path;
    for (const QPointF& point : points)
        path.AppendPoint({point, 1, first, first + 1, first + 2});
    return path;
}

TrackContent Content(std::vector<TrackPath> paths) {
    TrackContent content;
    content.info.xResolution = 0.5;
    content.info.yResolution = 0.25;
    content.info.xOffset = 3.0;
    content.info.yOffset = 4.0;
    content.image = QImage(40, 30, QImage::Format_RGB888);
    content.image.fill(Qt::black);
    content.paths = std::move(paths);
    return content;
}

/// The complete state that a step must restore.
struct State {
    int finishedCount = 0;
    std::vector<std::vector<std::pair<double, double>>> points;
    std::vector<std::vector<int>> lists;

    friend bool operator==(const State&, const State&) = default;
};

State StateOf(const TrackDocument& document) {
    State state;
    state.finishedCount = document.finishedCount();
    for (const TrackPath& path : document.paths()) {
        auto& points = state.points.emplace_back();
        for (const QPointF& point : path.points)
            points.emplace_back(point.x(), point.y());
        for (const auto* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
            state.lists.push_back(*list);
    }
    return state;
}

class TrackDocumentTest : public ::testing::Test {
  protected:
    /// A closed path of these points.
    void Draw(const std::vector<QPointF>& points) {
        document.addPath(points.front());
        for (std::size_t point = 1; point < points.size(); ++point)
            document.addPoint(points[point]);
        document.closePath();
    }
    [[nodiscard]] const std::vector<TrackPath>& Paths() const { return document.paths(); }

    /// Checks that undo restores the state before `edit`, and redo the state after it.
    template<typename Edit>
    void ExpectOneStep(Edit edit) {
        const State before = StateOf(document);
        document.endGesture();
        edit();
        const State after = StateOf(document);
        ASSERT_FALSE(before == after);
        document.undo();
        EXPECT_TRUE(StateOf(document) == before);
        document.redo();
        EXPECT_TRUE(StateOf(document) == after);
    }

    TrackDocument document;
};

TEST_F(TrackDocumentTest, startsWithoutATrack) {
    EXPECT_FALSE(document.hasImage());
    EXPECT_FALSE(document.isOpen());
    EXPECT_FALSE(document.isModified());
    EXPECT_FALSE(document.canUndo());
    EXPECT_FALSE(document.canRedo());
    EXPECT_TRUE(Paths().empty());
    EXPECT_EQ(document.finishedCount(), 0);
}

TEST_F(TrackDocumentTest, newPointGetsTheDefaultParameters) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    EXPECT_THAT(Paths().at(0).methods, ElementsAre(1, 1));
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(100, 100));
    EXPECT_THAT(Paths()[0].widths, ElementsAre(50, 50));
    EXPECT_THAT(Paths()[0].spaces, ElementsAre(100, 100));
    EXPECT_TRUE(Paths()[0].rulerMarks.empty());
    EXPECT_EQ(document.finishedCount(), 1);
}

TEST_F(TrackDocumentTest, deletingTheLastOfTwoPointsRemovesThePath) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    document.deleteLast();
    EXPECT_TRUE(Paths().empty());
    EXPECT_EQ(document.finishedCount(), 0);
}

TEST_F(TrackDocumentTest, deletingTheLastOfThreePointsLeavesTwoAndTheirMarks) {
    Draw({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.9}});
    document.computeRulerMarks({400, 300});
    ASSERT_EQ(Paths()[0].rulerMarks.size(), 2U);
    document.deleteLast();
    ASSERT_EQ(Paths()[0].points.size(), 2U);
    EXPECT_EQ(Paths()[0].methods.size(), 2U);
    EXPECT_EQ(Paths()[0].lengths.size(), 2U);
    EXPECT_EQ(Paths()[0].widths.size(), 2U);
    EXPECT_EQ(Paths()[0].spaces.size(), 2U);
    EXPECT_EQ(Paths()[0].rulerMarks.size(), 2U);
    EXPECT_EQ(document.finishedCount(), 1);
}

TEST_F(TrackDocumentTest, deletingAPathClosesEveryOther) {
    document.open(
        Content({Path({{0.1, 0.1}, {0.2, 0.2}}), Path({{0.3, 0.3}, {0.4, 0.4}}), Path({{0.5, 0.5}})}),
        "a.trk", TrackOrigin::External);
    ASSERT_EQ(document.finishedCount(), 0);
    ExpectOneStep([this] { document.deleteLast(); });
    EXPECT_EQ(Paths().size(), 2U);
    EXPECT_EQ(document.finishedCount(), 2);
}

TEST_F(TrackDocumentTest, removingAPointOfFewerThanThreeRemovesItsPathAndClosesEveryOther) {
    document.open(
        Content({Path({{0.1, 0.1}, {0.2, 0.2}}, 10), Path({{0.3, 0.3}, {0.4, 0.4}, {0.5, 0.4}}, 20)}),
        "a.trk", TrackOrigin::External);
    document.addPath({0.6, 0.6});
    document.removePoint({1, 1});
    EXPECT_EQ(Paths().at(1).points, (std::vector<QPointF>{{0.3, 0.3}, {0.5, 0.4}}));
    EXPECT_THAT(Paths()[1].lengths, ElementsAre(20, 20));
    EXPECT_EQ(document.finishedCount(), 0) << "the path continues without the point";
    document.removePoint({0, 0});
    ASSERT_EQ(Paths().size(), 2U);
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(20, 20));
    EXPECT_EQ(document.finishedCount(), 2);
    document.undo();
    EXPECT_THAT(Paths().at(0).lengths, ElementsAre(10, 10));
    EXPECT_EQ(document.finishedCount(), 0);
}

TEST_F(TrackDocumentTest, bothHalvesOfASegmentHaveItsParameters) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}}, 10)}), "a.trk", TrackOrigin::External);
    document.setParameter({0, 0}, SegmentParameter::Length, 77);
    document.setParameter({0, 0}, SegmentParameter::Method, 3);
    document.splitSegment({0, 0}, {0.12, 0.13});
    ASSERT_EQ(Paths()[0].points.size(), 3U);
    EXPECT_EQ(Paths()[0].points[1], QPointF(0.12, 0.13));
    EXPECT_THAT(Paths()[0].methods, ElementsAre(3, 3, 1));
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(77, 77, 10));
    EXPECT_THAT(Paths()[0].widths, ElementsAre(11, 11, 11));
    EXPECT_THAT(Paths()[0].spaces, ElementsAre(12, 12, 12));
}

TEST_F(TrackDocumentTest, closingAllPathsIsOneStep) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}}), Path({{0.3, 0.3}, {0.4, 0.4}})}), "a.trk",
                  TrackOrigin::External);
    document.closePath();
    document.addPath({0.5, 0.5});
    document.closeAllPaths();
    EXPECT_EQ(document.finishedCount(), 3);
    const int steps = document.undoDepth();
    document.closeAllPaths();
    EXPECT_EQ(document.undoDepth(), steps) << "all are closed";
    document.undo();
    EXPECT_EQ(document.finishedCount(), 1);
}

TEST_F(TrackDocumentTest, segmentExistsBetweenTwoPoints) {
    Draw({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.2}});
    EXPECT_TRUE(document.segmentExists(0, 0));
    EXPECT_TRUE(document.segmentExists(0, 1));
    EXPECT_FALSE(document.segmentExists(0, 2));
    EXPECT_FALSE(document.segmentExists(1, 0));
    EXPECT_FALSE(TrackDocument().segmentExists(0, 0));
}

TEST_F(TrackDocumentTest, eachParameterGoesToItsOwnListAndSegment) {
    Draw({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.2}});
    EXPECT_TRUE(document.setParameter({0, 1}, SegmentParameter::Method, 2));
    EXPECT_TRUE(document.setParameter({0, 1}, SegmentParameter::Length, 3));
    EXPECT_TRUE(document.setParameter({0, 1}, SegmentParameter::Width, 4));
    EXPECT_TRUE(document.setParameter({0, 1}, SegmentParameter::Space, 5));
    EXPECT_THAT(Paths()[0].methods, ElementsAre(1, 2, 1));
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(100, 3, 100));
    EXPECT_THAT(Paths()[0].widths, ElementsAre(50, 4, 50));
    EXPECT_THAT(Paths()[0].spaces, ElementsAre(100, 5, 100));
    EXPECT_EQ(document.parameter({0, 1}, SegmentParameter::Method), 2);
    EXPECT_EQ(document.parameter({0, 1}, SegmentParameter::Length), 3);
    EXPECT_EQ(document.parameter({0, 1}, SegmentParameter::Width), 4);
    EXPECT_EQ(document.parameter({0, 1}, SegmentParameter::Space), 5);
}

TEST_F(TrackDocumentTest, doesNotSetAParameterOfAMissingSegment) {
    EXPECT_FALSE(document.setParameter({0, 0}, SegmentParameter::Length, 3));
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    EXPECT_FALSE(document.setParameter({0, 1}, SegmentParameter::Length, 3));
    EXPECT_FALSE(document.setParameter({1, 0}, SegmentParameter::Length, 3));
    EXPECT_FALSE(document.setParameter({0, -1}, SegmentParameter::Length, 3));
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(100, 100));
}

TEST_F(TrackDocumentTest, batchReachesTheLastPointsToo) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    Draw({{0.1, 0.5}, {0.2, 0.5}, {0.3, 0.5}});
    document.setParameterEverywhere(SegmentParameter::Width, 7);
    EXPECT_THAT(Paths()[0].widths, ElementsAre(7, 7));
    EXPECT_THAT(Paths()[1].widths, ElementsAre(7, 7, 7));
    EXPECT_THAT(Paths()[1].lengths, ElementsAre(100, 100, 100));
}

TEST_F(TrackDocumentTest, everyKindOfEditIsOneStep) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}, {0.3, 0.1}}), Path({{0.3, 0.3}, {0.4, 0.4}}, 20)}),
                  "a.trk", TrackOrigin::External);
    ExpectOneStep([this] { document.addPoint({0.5, 0.5}); });
    ExpectOneStep([this] { document.closePath(); });
    ExpectOneStep([this] { document.closePath(); });
    ExpectOneStep([this] { document.addPath({0.6, 0.6}); });
    ExpectOneStep([this] { document.addPoint({0.7, 0.6}); });
    ExpectOneStep([this] { document.closePath(); });
    ExpectOneStep([this] {
        for (const double x : {0.61, 0.62, 0.63})
            document.movePoint({2, 0}, {x, 0.6});
    });
    ExpectOneStep([this] { document.setParameter({0, 1}, SegmentParameter::Space, 9); });
    ExpectOneStep([this] { document.setParameterEverywhere(SegmentParameter::Length, 9); });
    ExpectOneStep([this] { document.splitSegment({0, 1}, {0.25, 0.15}); });
    ExpectOneStep([this] { document.removePoint({0, 0}); });
    ExpectOneStep([this] { document.removePoint({1, 0}); }); // the path of two points, before another
    ExpectOneStep([this] { document.addPath({0.8, 0.8}); });
    ExpectOneStep([this] { document.deleteLast(); }); // the path of one point
    ExpectOneStep([this] { document.deleteLast(); }); // the last of three points
    ExpectOneStep([this] { document.deleteAll(); });
}

TEST_F(TrackDocumentTest, typingInOneFieldForOneSegmentIsOneStep) {
    Draw({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.2}});
    const State before = StateOf(document);
    document.endGesture();
    for (const int typed : {0, 7, 75})
        document.setParameter({0, 0}, SegmentParameter::Length, typed);
    document.setParameter({0, 0}, SegmentParameter::Width, 8); // another field
    document.setParameter({0, 1}, SegmentParameter::Width, 8); // another segment
    document.undo();
    document.undo();
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(75, 100, 100));
    EXPECT_THAT(Paths()[0].widths, ElementsAre(50, 50, 50));
    document.undo();
    EXPECT_TRUE(StateOf(document) == before);
}

TEST_F(TrackDocumentTest, batchSettingIsOneStepHoweverItIsTyped) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    document.setParameter({0, 0}, SegmentParameter::Length, 5);
    const State before = StateOf(document);
    for (const int typed : {0, 7, 75})
        document.setParameterEverywhere(SegmentParameter::Length, typed);
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(75, 75));
    document.undo();
    EXPECT_TRUE(StateOf(document) == before);
    document.redo();
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(75, 75));
}

TEST_F(TrackDocumentTest, newGestureIsANewStep) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    document.endGesture();
    document.movePoint({0, 0}, {0.3, 0.3});
    document.endGesture();
    document.movePoint({0, 0}, {0.4, 0.4});
    document.undo();
    EXPECT_EQ(Paths()[0].points[0].x(), 0.3);
    document.undo();
    EXPECT_EQ(Paths()[0].points[0].x(), 0.1);
}

TEST_F(TrackDocumentTest, gestureThatEndsWhereItBeganIsNoStep) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    document.deleteAll();
    document.undo();
    const bool modified = document.isModified();
    document.endGesture();
    document.setParameter({0, 0}, SegmentParameter::Length, 100); // the previous value
    document.setParameterEverywhere(SegmentParameter::Length, 100);
    document.movePoint({0, 0}, {0.1, 0.1});
    EXPECT_TRUE(document.canRedo()) << "nothing was changed, so redo stays possible";
    document.movePoint({0, 0}, {0.5, 0.5});
    document.movePoint({0, 0}, {0.1, 0.1});
    EXPECT_EQ(document.isModified(), modified);
    document.undo(); // the closing of the path
    EXPECT_EQ(document.finishedCount(), 0);
}

TEST_F(TrackDocumentTest, editAfterUndoClearsRedo) {
    Draw({{0.1, 0.1}, {0.2, 0.1}});
    document.undo();
    ASSERT_TRUE(document.canRedo());
    document.addPoint({0.5, 0.5});
    EXPECT_FALSE(document.canRedo());
    const State after = StateOf(document);
    document.redo();
    EXPECT_TRUE(StateOf(document) == after);
}

TEST_F(TrackDocumentTest, undoClearsModifiedAndRedoSetsIt) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "a.trk", TrackOrigin::External);
    EXPECT_FALSE(document.isModified());
    document.addPoint({0.3, 0.3});
    EXPECT_TRUE(document.isModified());
    document.undo();
    EXPECT_FALSE(document.isModified());
    document.redo();
    EXPECT_TRUE(document.isModified());
}

TEST_F(TrackDocumentTest, closingAPathDoesNotModifyTheTrack) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "a.trk", TrackOrigin::External);
    document.closePath();
    EXPECT_TRUE(document.canUndo());
    EXPECT_FALSE(document.isModified());
}

TEST_F(TrackDocumentTest, savingMakesTheCurrentStateUnmodified) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "a.trk", TrackOrigin::External);
    document.setParameter({0, 0}, SegmentParameter::Length, 7);
    document.setSaved();
    EXPECT_FALSE(document.isModified());
    document.setParameter({0, 0}, SegmentParameter::Length, 75); // typing continues after the save
    EXPECT_TRUE(document.isModified());
    document.undo();
    EXPECT_FALSE(document.isModified());
    EXPECT_THAT(Paths()[0].lengths, ElementsAre(7, 10));
    document.undo();
    EXPECT_TRUE(document.isModified());
}

TEST_F(TrackDocumentTest, openingAndClosingClearTheHistory) {
    document.addPath({0.1, 0.1});
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "a.trk", TrackOrigin::Workspace);
    EXPECT_FALSE(document.canUndo());
    EXPECT_EQ(document.finishedCount(), 0);
    EXPECT_TRUE(document.isWorkspaceTrack());
    document.addPoint({0.5, 0.5});
    document.undo();
    document.close();
    EXPECT_FALSE(document.canUndo());
    EXPECT_FALSE(document.canRedo());
    EXPECT_FALSE(document.isModified());
    EXPECT_FALSE(document.hasImage());
    EXPECT_FALSE(document.isOpen());
    EXPECT_FALSE(document.isWorkspaceTrack());
}

TEST_F(TrackDocumentTest, detachedTrackIsShownButNotOpen) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "a.trk", TrackOrigin::Workspace);
    document.addPoint({0.5, 0.5});
    document.detach();
    EXPECT_TRUE(document.hasImage());
    EXPECT_FALSE(document.isOpen());
    EXPECT_TRUE(document.isModified());
    EXPECT_TRUE(document.canUndo());
}

TEST_F(TrackDocumentTest, addsAnExternalTrackToTheWorkspace) {
    document.open(Content({Path({{0.1, 0.1}, {0.2, 0.2}})}), "/elsewhere/a.trk", TrackOrigin::External);
    EXPECT_TRUE(document.isExternal());
    document.moveToWorkspace("./tracks/a.trk");
    EXPECT_FALSE(document.isExternal());
    EXPECT_TRUE(document.isWorkspaceTrack());
    EXPECT_EQ(document.file(), "./tracks/a.trk");
}

TEST_F(TrackDocumentTest, worldComesFromInformationAndImage) {
    document.open(Content({}), "a.trk", TrackOrigin::External);
    const WorldTransform world = document.worldTransform();
    EXPECT_EQ(world.widthScale, 0.25);
    EXPECT_EQ(world.xOffset, 3.0);
    EXPECT_EQ(world.yOffset, 4.0);
    EXPECT_EQ(world.xScale, 20.0); // 40 columns of 0.5
    EXPECT_EQ(world.yScale, 7.5);  // 30 rows of 0.25
    EXPECT_EQ(document.shownSize(), QSize(80, 30));
}

TEST_F(TrackDocumentTest, reportsWhatChanged) {
    std::vector<std::size_t> kinds;
    QObject::connect(&document, &TrackDocument::pathsChanged,
                     [&](const PathsChange& change) { kinds.push_back(change.index()); });
    const auto kindOf = [](const PathsChange& change) { return change.index(); };
    Draw({{0.1, 0.1}, {0.2, 0.1}, {0.3, 0.1}});
    EXPECT_THAT(kinds, ElementsAre(kindOf(PathInserted{}), kindOf(PointInserted{}), kindOf(PointInserted{}),
                                   kindOf(FinishedCountSet{})));
    kinds.clear();
    document.movePoint({0, 0}, {0.5, 0.5});
    document.deleteLast();
    document.deleteLast();
    EXPECT_THAT(kinds, ElementsAre(kindOf(PointMoved{}), kindOf(PointRemoved{}), kindOf(PathRemoved{}),
                                   kindOf(FinishedCountSet{})));
    kinds.clear();
    document.undo();
    EXPECT_THAT(kinds, ElementsAre(kindOf(PathInserted{}), kindOf(FinishedCountSet{})));
}

TEST_F(TrackDocumentTest, moveReportsThePreviousPosition) {
    Draw({{0.1, 0.2}, {0.3, 0.4}});
    PointMoved seen{};
    QObject::connect(&document, &TrackDocument::pathsChanged, [&](const PathsChange& change) {
        if (const auto* const moved = std::get_if<PointMoved>(&change))
            seen = *moved;
    });
    document.movePoint({0, 1}, {0.5, 0.6});
    EXPECT_EQ(seen.at, (PointIndex{0, 1}));
    EXPECT_EQ(seen.before, QPointF(0.3, 0.4));
}

TEST_F(TrackDocumentTest, marksFollowEveryStepBackAndForth) {
    Draw({{0.1, 0.1}, {0.8, 0.1}, {0.8, 0.9}});
    Draw({{0.2, 0.3}, {0.7, 0.35}});
    document.movePoint({0, 1}, {0.7, 0.2});
    document.setParameter({1, 0}, SegmentParameter::Space, 11);
    Draw({{0.3, 0.5}, {0.9, 0.6}, {0.1, 0.7}});
    document.computeRulerMarks({400, 300}); // from here on the marks are updated
    document.splitSegment({0, 0}, {0.4, 0.2});
    document.removePoint({2, 0});
    document.computeRulerMarks({400, 300});
    document.removePoint({1, 0});
    document.deleteLast();
    document.deleteAll();
    const auto expectMarksOfAll = [this] {
        document.computeRulerMarks({400, 300});
        std::vector<TrackPath> fresh = Paths();
        for (TrackPath& path : fresh)
            path.rulerMarks = RulerMarksBuilder({400, 300}).MarksOfPath(path);
        for (std::size_t path = 0; path < fresh.size(); ++path) {
            ASSERT_EQ(Paths()[path].rulerMarks.size(), fresh[path].rulerMarks.size());
            for (std::size_t segment = 0; segment < fresh[path].rulerMarks.size(); ++segment)
                EXPECT_EQ(Paths()[path].rulerMarks[segment].bands, fresh[path].rulerMarks[segment].bands);
        }
    };
    expectMarksOfAll();
    while (document.canUndo()) {
        document.undo();
        expectMarksOfAll();
    }
    while (document.canRedo()) {
        document.redo();
        expectMarksOfAll();
    }
}

TEST_F(TrackDocumentTest, historyHoldsAThousandSteps) {
    for (int step = 0; step < UndoHistory::kMaxSteps + 5; ++step) {
        document.addPath({0.5, 0.5});
    }
    int undone = 0;
    for (; document.canUndo(); ++undone)
        document.undo();
    EXPECT_EQ(undone, 1000);
    EXPECT_EQ(Paths().size(), 5U);
    EXPECT_TRUE(document.isModified()) << "the state before the first step cannot be restored";
}

TEST_F(TrackDocumentTest, undoWithManyPointsRestoresThemAll) {
    std::vector<QPointF> points;
    for (int point = 0; point < 100'000; ++point)
        points.emplace_back(point * 1e-5, (point % 317) / 317.0);
    document.open(Content({Path(points)}), "a.trk", TrackOrigin::External);
    ExpectOneStep([this] { document.deleteAll(); });
    document.undo();
    ExpectOneStep([this] { document.setParameterEverywhere(SegmentParameter::Length, 3); });
    ExpectOneStep([this] { document.deleteLast(); });
    EXPECT_EQ(Paths()[0].points.size(), 99'999U);
}

} // namespace
