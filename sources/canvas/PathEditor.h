#pragma once

#include "canvas/CanvasScale.h"
#include "document/TrackDocument.h"

#include <QPointF>

#include <optional>

/// What the mouse and the window's controls have chosen or begun on the paths. Points are normalised to the
/// canvas; a null point (QPointF::isNull) means "none".
struct EditingState {
    int hoverPath = 0;      ///< path of the point under the cursor or being dragged
    int hoverPoint = 0;     ///< index of that point in its path
    QPointF rubberPoint;    ///< the cursor while the left button is held and nothing is dragged
    QPointF dragPoint;      ///< the point that is under the cursor or being dragged
    int currentPath = 0;    ///< the path whose parameters are shown and set
    int currentSegment = 0; ///< its segment whose parameters are shown and set
};

/// Turns what the mouse and the keys do on the canvas into edits of a document, without a widget. Positions
/// are widget pixels of the canvas that `scale` is made for.
class PathEditor {
  public:
    /// @param document borrowed; it outlives the editor
    explicit PathEditor(TrackDocument& document) : document(&document) {}

    [[nodiscard]] const EditingState& State() const { return state; }

    /// Left button down: starts a path unless one is open or a point is under the cursor.
    void Press(const CanvasScale& scale, const QPointF& position);

    /// Ctrl and left button down: puts a point on the segment under the cursor, with the parameters that it
    /// has. The rest of the gesture is ignored. @return false, with nothing done, where there is a point or
    /// no segment
    bool PressOnSegment(const CanvasScale& scale, const QPointF& position);

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

    /// Ends the gesture of the button that is held: a dragged point moves back, and the mouse is ignored
    /// until the button is pressed again. @return whether a point moved back
    bool GiveUpGesture();

    /// No point is under the cursor, and nothing is drawn to it, until it moves again.
    void ForgetCursor();

    /// Forgets the cursor and the chosen segment.
    void Reset();

    /// Forgets the touched point when its index may now belong to another point.
    void Follow(const PathsChange& change);

    void SetCurrentPath(int path) { state.currentPath = path; }
    void SetCurrentSegment(int segment) { state.currentSegment = segment; }

    // By key, while no button is held. Each change is one step.

    /// The point that keys act on: the one under the cursor, or else the one that was last drawn, dragged,
    /// inserted or chosen.
    [[nodiscard]] std::optional<PointIndex> TouchedPoint() const;
    /// Whether a key, not the cursor, has decided which point is shown as hovered. The next press or move of
    /// the mouse searches again.
    [[nodiscard]] bool IsHoverByKey() const { return hoverByKey; }
    /// No point is touched or shown.
    void LetGo();
    /// Moves the touched point by tenths of a pixel of an image, but not over the margin of the canvas.
    /// @param image columns x rows. @return whether there is a touched point
    bool MoveTouched(const CanvasScale& scale, const QPoint& tenths, const QSize& image);
    /// Removes the touched point by the rule of TrackDocument::removePoint. @return whether there was one
    bool RemoveTouched();
    /// Adds a point as a click would, but moves none. @return whether one was added
    bool AddPoint(const CanvasScale& scale, const QPointF& position);
    /// Puts a point on the segment under the cursor, or in the middle of the chosen segment when there is no
    /// cursor or only a point or nothing under it. @return whether there was a segment
    bool SplitSegment(const CanvasScale& scale, const std::optional<QPointF>& cursor);
    /// Touches the next (1) or previous (-1) point in list order, or the first of the chosen segment when
    /// none is touched. @return whether there is such a point
    bool ChoosePoint(int delta);

  private:
    void MoveHoverPoint(const QPointF& point);
    void ShowByKey(PointIndex at);
    [[nodiscard]] PointIndex Hovered() const { return {state.hoverPath, state.hoverPoint}; }
    [[nodiscard]] bool IsPathOpen() const;
    [[nodiscard]] QPointF PositionOf(PointIndex at) const;
    [[nodiscard]] std::optional<PointIndex> Neighbour(PointIndex at, int delta) const;
    void Split(PointIndex start, const QPointF& position);

    TrackDocument* document;
    EditingState state;
    std::optional<PointIndex> touched;
    std::optional<QPointF> dragStart; ///< where the dragged point was before the gesture
    bool gestureEnded = false;        ///< ignore the button until it is pressed again
    bool hoverByKey = false;
};
