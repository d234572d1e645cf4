#pragma once

#include "document/Extent.h"
#include "document/PathFiles.h"
#include "document/PathList.h"
#include "document/RulerMarksCache.h"
#include "document/UndoHistory.h"
#include "document/formats/TrackInfo.h"

#include <QImage>
#include <QObject>
#include <QSize>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The part of a track file that is shown and edited.
struct TrackContent {
    TrackInfo info;
    QImage image; ///< the height map in colour
    std::vector<TrackPath> paths;
    bool isComplete = true; ///< whether all of it could be read
};

/// Which ruler marks an update has touched.
struct RulerMarksChange {
    std::vector<std::size_t> paths; ///< in ascending order, possibly twice
    Extent extent;                  ///< the area of the old and new marks
};

/// Where an open track came from.
enum class TrackOrigin {
    Workspace, ///< a file of the unpacked workspace
    External   ///< any other file, which is never written
};

/// The open track: its information, image and paths, where they came from, and the undo history.
///
/// It is the only owner of these. Views request changes and follow its signals; each signal is sent after the
/// change, on the window's thread, on which everything here runs. Points are normalised to the canvas (0..1
/// across and down).
class TrackDocument final : public QObject {
    Q_OBJECT

  public:
    using Revision = UndoHistory::Revision;

    explicit TrackDocument(QObject* parent = nullptr);
    ~TrackDocument() override;

    /// Replaces the open track and clears the undo history. No path counts as closed. A track that is not
    /// complete is shown, but cannot be saved.
    void open(TrackContent content, std::string file, TrackOrigin origin);
    /// The track stays visible, but no longer belongs to a file and cannot be saved.
    void detach();
    /// Removes the image and clears the undo history. The paths stay until they are reset.
    void close();
    /// From now on the track belongs to this file of the workspace.
    void moveToWorkspace(std::string file);

    /// Whether there is a track to be shown.
    [[nodiscard]] bool hasImage() const { return !content.image.isNull(); }
    /// Whether a complete track is open, which can be saved.
    [[nodiscard]] bool isOpen() const { return opened; }
    [[nodiscard]] bool isWorkspaceTrack() const { return opened && origin == TrackOrigin::Workspace; }
    [[nodiscard]] bool isExternal() const { return origin == TrackOrigin::External; }
    /// The open track's file, as it was opened.
    [[nodiscard]] const std::string& file() const { return path; }
    [[nodiscard]] const TrackInfo& info() const { return content.info; }
    [[nodiscard]] const QImage& image() const { return content.image; }
    /// Pixels of the image at 100 %, which segment parameters and ruler marks are measured in.
    [[nodiscard]] QSize shownSize() const;

    /// The paths, in creation and file order. The reference is valid until the next change.
    [[nodiscard]] const std::vector<TrackPath>& paths() const { return list.Paths(); }
    /// Paths below this index are closed; a path at it, the last one, is open.
    [[nodiscard]] int finishedCount() const { return list.FinishedCount(); }
    [[nodiscard]] bool hasPoint(PointIndex at) const { return list.HasPoint(at); }
    /// Whether path `path` has a segment `segment`; a negative segment is not checked for.
    [[nodiscard]] bool segmentExists(int path, int segment) const;
    /// A parameter of the segment that an existing point starts.
    [[nodiscard]] int parameter(PointIndex at, SegmentParameter parameter) const;

    // Editing. Each call is one step, unless it continues the gesture of the step before or changes nothing.

    /// Starts a path, which is open, with one point of the default parameters.
    void addPath(const QPointF& position);
    /// Adds a point of the default parameters to the last path, which must exist.
    void addPoint(const QPointF& position);
    void movePoint(PointIndex at, const QPointF& position);
    /// Halves a segment, which must exist: the new point is at `position`, and both halves have the
    /// parameters that the segment had. @param at the point that the segment starts at
    void splitSegment(PointIndex at, const QPointF& position);
    /// Removes a point, which must exist, or its path when that has fewer than 3 points; then every path that
    /// remains is closed.
    void removePoint(PointIndex at);
    /// Closes the first open path; nothing when all are closed.
    void closePath() { ClosePaths(1); }
    /// Closes every open path, in one step.
    void closeAllPaths() { ClosePaths(list.Count()); }
    /// Removes the last point of the last path by the rule of removePoint; nothing without paths.
    void deleteLast();
    /// Removes every path.
    void deleteAll();
    /// @return false when there is no such segment
    bool setParameter(PointIndex at, SegmentParameter parameter, int value);
    /// Sets a parameter of every point of every path, those without a segment included.
    void setParameterEverywhere(SegmentParameter parameter, int value);
    /// Starts a new gesture: a button went down, or another field or segment was chosen.
    void endGesture() { history.EndGesture(); }

    [[nodiscard]] bool canUndo() const { return history.CanUndo(); }
    [[nodiscard]] bool canRedo() const { return history.CanRedo(); }
    /// How many steps can be undone.
    [[nodiscard]] int undoDepth() const { return history.Depth(); }
    void undo();
    void redo();

    /// Whether a file would hold other paths than it did when they were read or last saved.
    [[nodiscard]] bool isModified() const { return revision() != savedRevision; }
    /// Marks the present paths as those of the open track's file.
    void setSaved();
    /// Identifies the present paths: equal revisions mean equal paths.
    [[nodiscard]] Revision revision() const { return history.CurrentRevision(); }

    // Not undoable: undo cannot go back beyond these.

    /// Removes every path and counts none as closed.
    void resetPaths();
    /// Has the file's converter read its paths in place of those held; the number of closed paths stays.
    /// @return 0, or the converter's failure code; what was read before the failure is then kept
    int loadPaths(const std::string& file);

    /// Brings the ruler marks of every path up to date for an aspect-corrected image size. The result equals
    /// a complete computation.
    void computeRulerMarks(const QSize& image);
    /// Empties the marks of every path.
    void clearRulerMarks();

    /// What ties normalised points to world units in a file.
    [[nodiscard]] WorldTransform worldTransform() const;
    /// Writes the paths with their ruler marks, and the rest of `original`, into the binary track file
    /// `target`. A target that cannot be written completely is left as it was. Marks that are up to date but
    /// were limited in number are a failure: they would be lost in the file.
    [[nodiscard]] SaveResult write(const std::string& original, const std::string& target,
                                   const WorldTransform& world) const;
    /// The same. @throws Ve::Exception with status bERROR_TRACK: "Failed to read the original file." or
    /// "Failed to read the target file."
    void save(const std::string& original, const std::string& target, const WorldTransform& world) const;

  signals:
    /// Paths, or the number of closed ones, have changed.
    void pathsChanged(const PathsChange& change);
    /// Ruler marks have changed, for those of the paths that `change` names.
    void rulerMarksChanged(const RulerMarksChange& change);
    /// A track was opened or closed: image and information have changed.
    void imageChanged();
    /// A step was undone or redone.
    void restored();
    /// The paths were saved: the track may now belong to another file with the same map.
    void saved();
    /// ``isModified` may have changed.
    void modifiedChanged();

  private:
    void ClosePaths(int most);
    void Follow(const PathsChange& change);
    [[nodiscard]] std::optional<std::uint64_t> ExpectedTicks() const;
    void Push(std::unique_ptr<PathStep> step);
    void ReplacePaths(std::vector<TrackPath> paths, int finishedCount);

    TrackContent content; ///< without the paths, which are in the list
    PathList list;
    UndoHistory history;
    RulerMarksCache marks;
    QSize marksSize; ///< the image size that the present marks are for; empty when there are none, or older
                     ///< ones
    std::string path;
    TrackOrigin origin = TrackOrigin::Workspace;
    bool opened = false;
    Revision savedRevision;
    std::string pathsFile; ///< the last file whose paths could be read
};
