#pragma once

#include "canvas/CanvasScale.h"
#include "canvas/EditingState.h"
#include "canvas/PointFinder.h"
#include "document/SegmentParameter.h"

/// What the mouse and the window's controls do to the paths, without a widget. Positions are widget pixels of
/// the canvas that `scale` stands for. The four parameter lists of a path are as long as its points after
/// every operation.
class PathEditor {
  public:
    [[nodiscard]] const EditingState& State() const { return state; }

    /// Left button down: starts a path unless one is open or a point is under the cursor.
    void Press(const CanvasScale& scale, const QPointF& position);

    /// Left button up: ends a drag, or adds a point to the last path, open or not, when the cursor has left
    /// the path's last point. @return whether a point was added
    bool Release(const CanvasScale& scale, const QPointF& position);

    /// Left button twice: closes the open path.
    void DoubleClick();

    /// Cursor moved without the left button: looks for the point under it.
    void Hover(const CanvasScale& scale, const QPointF& position);

    /// Cursor moved with the left button held: drags the point under it, or else stretches the rubber band.
    /// @return whether a point was dragged
    bool Drag(const CanvasScale& scale, const QPointF& position);

    /// Removes the last point, or the last path when it has fewer than 3 points.
    void DeleteLast();

    /// Removes every path and resets the state.
    void Reset();

    /// Takes over paths read from a file. The rest of the state stays: the number of closed paths among it.
    void TakePaths(std::vector<TrackPath> paths);

    void SetCurrentPath(int path) { state.currentPath = path; }
    void SetCurrentSegment(int segment) { state.currentSegment = segment; }

    /// Whether path `path` has a segment `segment`; a negative segment is not noticed.
    [[nodiscard]] bool SegmentExists(int path, int segment) const;
    /// A parameter of the current segment, which must exist.
    [[nodiscard]] int Parameter(SegmentParameter parameter) const;
    /// Sets a parameter of the current segment. @return false when there is no such segment
    bool SetParameter(SegmentParameter parameter, int value);
    /// Sets a parameter of every point of every path.
    void SetParameterEverywhere(SegmentParameter parameter, int value);

    /// The marks of all paths, for those who compute, keep and clear them.
    [[nodiscard]] std::vector<TrackPath>& PathsForMarks() { return state.paths; }

  private:
    [[nodiscard]] bool HoverPointExists() const;
    void MoveHoverPoint(const QPointF& point);

    EditingState state;
};
