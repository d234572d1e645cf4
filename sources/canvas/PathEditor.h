#pragma once

#include "canvas/CanvasScale.h"
#include "canvas/EditingState.h"
#include "document/TrackDocument.h"

/// Turns what the mouse does on the canvas into edits of a document, without a widget. Positions are widget
/// pixels of the canvas that `scale` is made for.
class PathEditor {
  public:
    /// @param document borrowed; it outlives the editor
    explicit PathEditor(TrackDocument& document) : document(&document) {}

    [[nodiscard]] const EditingState& State() const { return state; }

    /// Left button down: starts a path unless one is open or a point is under the cursor.
    void Press(const CanvasScale& scale, const QPointF& position);

    /// Left button up: ends a drag, or adds a point to the last path, open or not, when the cursor has left
    /// the path's last point. @return whether a point was added
    bool Release(const CanvasScale& scale, const QPointF& position);

    /// Left button twice: closes the open path.
    void DoubleClick() { document->closePath(); }

    /// Cursor moved without the left button: looks for the point under it.
    void Hover(const CanvasScale& scale, const QPointF& position);

    /// Cursor moved with the left button held: drags the point under it, or else stretches the rubber band.
    /// @return whether a point was dragged
    bool Drag(const CanvasScale& scale, const QPointF& position);

    /// No point is under the cursor, and nothing is drawn to it, until it moves again.
    void ForgetCursor();

    /// Forgets the cursor and the chosen segment.
    void Reset() { state = {}; }

    void SetCurrentPath(int path) { state.currentPath = path; }
    void SetCurrentSegment(int segment) { state.currentSegment = segment; }

  private:
    void MoveHoverPoint(const QPointF& point);

    TrackDocument* document;
    EditingState state;
};
