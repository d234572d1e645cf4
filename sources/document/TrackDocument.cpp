#include "document/TrackDocument.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "document/TrackGeometry.h"
#include "document/formats/Converter.h"

#include <algorithm>
#include <utility>

namespace {

/// The function name under which existing reports show a failed save.
Ve::Exception SaveFailure(int line, const char* message) {
    return {line, "qmaskwidget", bERROR_TRACK, "QMaskWidget::SavePath", "%s", message};
}

} // namespace

TrackDocument::TrackDocument(QObject* parent)
    : QObject(parent),
      list([this](const PathsChange& change) { Follow(change); }),
      history(list),
      savedRevision(history.CurrentRevision()) {
}

TrackDocument::~TrackDocument() = default;

void TrackDocument::open(TrackContent newContent, std::string file, TrackOrigin newOrigin) {
    std::vector<TrackPath> newPaths = std::move(newContent.paths);
    content = std::move(newContent);
    path = std::move(file);
    origin = newOrigin;
    opened = content.isComplete;
    pathsFile = opened ? path : std::string();
    ReplacePaths(std::move(newPaths), 0);
    emit imageChanged();
}

void TrackDocument::detach() {
    opened = false;
    emit modifiedChanged();
}

void TrackDocument::close() {
    content.image = {};
    opened = false;
    history.Clear(false);
    savedRevision = history.CurrentRevision();
    emit imageChanged();
    emit modifiedChanged();
}

void TrackDocument::moveToWorkspace(std::string file) {
    path = std::move(file);
    origin = TrackOrigin::Workspace;
}

QSize TrackDocument::shownSize() const {
    return ShownImageSize(content.image.size(), content.info.xResolution, content.info.yResolution);
}

bool TrackDocument::segmentExists(int pathIndex, int segment) const {
    if (pathIndex < 0 || pathIndex >= list.Count())
        return false;
    return segment < static_cast<int>(list.PathOf({pathIndex, 0}).points.size()) - 1;
}

int TrackDocument::parameter(PointIndex at, SegmentParameter which) const {
    return list.Parameter(at, which);
}

void TrackDocument::addPath(const QPointF& position) {
    Push(std::make_unique<AddPathStep>(PathPoint{.position = position}));
}

void TrackDocument::addPoint(const QPointF& position) {
    const auto points = static_cast<int>(paths().back().points.size());
    Push(std::make_unique<InsertPointStep>(PointIndex{list.Count() - 1, points},
                                           PathPoint{.position = position}));
}

void TrackDocument::movePoint(PointIndex at, const QPointF& position) {
    const QPointF& present = list.PathOf(at).points[static_cast<std::size_t>(at.point)];
    // Number by number: QPointF's comparison treats points that are close as equal.
    if (present.x() != position.x() || present.y() != position.y())
        Push(std::make_unique<MovePointStep>(at, position));
}

void TrackDocument::splitSegment(PointIndex at, const QPointF& position) {
    PathPoint point = list.PathOf(at).PointAt(static_cast<std::size_t>(at.point));
    point.position = position;
    Push(std::make_unique<InsertPointStep>(PointIndex{at.path, at.point + 1}, point));
}

void TrackDocument::removePoint(PointIndex at) {
    constexpr std::size_t kMinPointsLeft = 2;
    if (list.PathOf(at).points.size() <= kMinPointsLeft)
        Push(std::make_unique<RemovePathStep>(at.path));
    else
        Push(std::make_unique<RemovePointStep>(at));
}

void TrackDocument::ClosePaths(int most) {
    const int open = list.Count() - list.FinishedCount();
    if (open > 0)
        Push(std::make_unique<ClosePathsStep>(std::min(open, most)));
}

void TrackDocument::deleteLast() {
    if (!paths().empty())
        removePoint({list.Count() - 1, static_cast<int>(paths().back().points.size()) - 1});
}

void TrackDocument::deleteAll() {
    if (!paths().empty())
        Push(std::make_unique<ReplaceAllStep>());
}

bool TrackDocument::setParameter(PointIndex at, SegmentParameter which, int value) {
    if (at.point < 0 || !segmentExists(at.path, at.point))
        return false;
    if (list.Parameter(at, which) != value)
        Push(std::make_unique<SetParameterStep>(at, which, value));
    return true;
}

void TrackDocument::setParameterEverywhere(SegmentParameter which, int value) {
    if (!list.HasEverywhere(which, value))
        Push(std::make_unique<SetParameterEverywhereStep>(list, which, value));
}

void TrackDocument::undo() {
    if (!canUndo())
        return;
    history.Undo();
    emit restored();
    emit modifiedChanged();
}

void TrackDocument::redo() {
    if (!canRedo())
        return;
    history.Redo();
    emit restored();
    emit modifiedChanged();
}

void TrackDocument::setSaved() {
    history.EndGesture(); // undo can return to the saved state
    savedRevision = history.CurrentRevision();
    emit saved();
    emit modifiedChanged();
}

void TrackDocument::resetPaths() {
    ReplacePaths({}, 0);
}

int TrackDocument::loadPaths(const std::string& file) {
    std::vector<TrackPath> read;
    const int status = CreateConverter(file)->ReadPath(file, read);
    if (status == 0)
        pathsFile = file;
    ReplacePaths(std::move(read), list.FinishedCount());
    return status;
}

void TrackDocument::ReplacePaths(std::vector<TrackPath> newPaths, int finishedCount) {
    list.Swap(newPaths, finishedCount);
    history.Clear(true);
    savedRevision = history.CurrentRevision();
    emit modifiedChanged();
}

void TrackDocument::computeRulerMarks(const QSize& image) {
    RulerMarksChange change;
    marks.Update(list.PathsForMarks(), image, [&change](std::size_t touched, const RulerMarks& of) {
        if (change.paths.empty() || change.paths.back() != touched)
            change.paths.push_back(touched);
        change.extent.Add(of);
    });
    marksSize = image;
    emit rulerMarksChanged(change);
}

void TrackDocument::clearRulerMarks() {
    RulerMarksChange change;
    for (std::size_t index = 0; index < paths().size(); ++index) {
        change.paths.push_back(index);
        for (const RulerMarks& of : std::exchange(list.PathsForMarks()[index].rulerMarks, {}))
            change.extent.Add(of);
    }
    marks.Forget();
    marksSize = {};
    emit rulerMarksChanged(change);
}

WorldTransform TrackDocument::worldTransform() const {
    return WorldOf(content.info, content.image.size());
}

SaveResult TrackDocument::write(const std::string& original, const std::string& target,
                                const WorldTransform& world) const {
    return SaveWithPaths(original, target, paths(), world, original == pathsFile, ExpectedTicks());
}

/// How many ticks the paths have; none when the marks are not up to date.
std::optional<std::uint64_t> TrackDocument::ExpectedTicks() const {
    if (marksSize.isEmpty())
        return std::nullopt;
    return RulerMarksBuilder(marksSize).TickCount(paths());
}

void TrackDocument::save(const std::string& original, const std::string& target,
                         const WorldTransform& world) const {
    switch (write(original, target, world)) {
    case SaveResult::Saved:
        return;
    case SaveResult::OriginalUnreadable:
        throw SaveFailure(__LINE__, "Failed to read the original file.");
    case SaveResult::TargetUnwritable:
        throw SaveFailure(__LINE__, "Failed to read the target file.");
    }
}

void TrackDocument::Push(std::unique_ptr<PathStep> step) {
    history.Push(std::move(step));
    emit modifiedChanged();
}

/// The marks cache follows first: a receiver of the signal may update the marks.
void TrackDocument::Follow(const PathsChange& change) {
    marks.Follow(change);
    marksSize = {};
    emit pathsChanged(change);
}
