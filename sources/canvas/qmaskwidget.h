#pragma once

#include "canvas/HeightMapView.h"
#include "canvas/PathEditor.h"
#include "canvas/PathExtents.h"
#include "raster/ShapeCache.h"

#include <QBasicTimer>
#include <QLabel>
#include <QPixmap>
#include <QRegion>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// All that the canvas knows of its window.
class RulerOwner {
  public:
    /// Whether the ruler is shown, and so kept up to date while paths are edited.
    [[nodiscard]] virtual bool rulerShown() const = 0;

    /// Has the canvas compute its ruler marks for the open track's image.
    virtual void refreshRuler() = 0;

  protected:
    ~RulerOwner() = default;
};

class RulerOwner;

/// The canvas: shows the height map and lets the operator draw, reshape and measure paths with the mouse, and
/// by keys through the operations that a window binds to them.
///
/// The paths are those of a document; the canvas asks it to change and follows its signals. All of it runs on
/// the window's thread. Mouse positions are widget pixels; everything stored is normalised to the canvas
/// (x = pixel / width, y = pixel / height), so that a resize leaves the paths as they are.
///
/// The height map is the label's pixmap, stretched to the canvas: `setPixmap` shows one, `clear` takes it
/// away. Without a pixmap every mouse event is ignored and nothing is painted; the operations below work
/// anyway.
///
/// Loading a track: `resetPaths`, then `loadPaths`, which leaves `finishedCount` at 0 on purpose.
class QMaskWidget : public QLabel {
    Q_OBJECT

  public:
    /// The parent's parent is asked for the ruler when it is a RulerOwner. It is found here, once: the widget
    /// may be moved to another parent later. It must outlive the canvas.
    explicit QMaskWidget(QWidget* parent = nullptr);
    ~QMaskWidget() override;

    /// Edits another document from now on, which is borrowed and outlives the canvas. Until the first call
    /// the canvas edits its own empty document.
    void setDocument(TrackDocument& other);
    [[nodiscard]] TrackDocument& document() const { return *doc; }

    /// Removes every path in one step and resets the editing state, then repaints.
    void clearAll();
    /// The same without the repaint and without a step.
    void resetPaths();
    /// Removes the last point, or the last path when it has fewer than 3 points; nothing without paths. The
    /// ruler marks are left to the caller's refresh.
    void deleteLast();
    /// Whether path `path` has a segment `segment` (both from 0, not checked for being negative).
    [[nodiscard]] bool segmentExists(int path, int segment) const;
    /// Empties the marks of every path, then repaints.
    void clearRulerMarks();
    /// Brings the marks of every path up to date for the aspect-corrected image size and repaints what
    /// changed. The result is that of computing them all.
    void computeRulerMarks(int imageWidth, int imageHeight);
    /// Has the file's converter read its paths in place of those held. @return 0, or the converter's failure
    /// code; what was read before the failure is then kept.
    int loadPaths(const QString& fileName);
    /// Writes the paths, with the rest of `original`, into the binary track file `target`. A target that
    /// cannot be written completely is left as it was.
    /// @throws Ve::Exception with status bERROR_TRACK: "Failed to read the original file." or "Failed to read
    /// the target file."
    void SavePath(const QString& original, const QString& target, double widthScale, double xOffset,
                  double yOffset, double xScale, double yScale);

    /// The paths, in creation and file order. The reference is valid until the next change.
    [[nodiscard]] const std::vector<TrackPath>& paths() const;
    /// The path and segment (from 0) chosen for parameter edits; they need not exist.
    [[nodiscard]] int currentPath() const;
    [[nodiscard]] int currentSegment() const;
    /// Choose the highlighted segment, which is repainted. Any number from 0 is accepted.
    void setCurrentPath(int path);
    void setCurrentSegment(int segment);

    /// A parameter of the chosen segment, which must exist (`segmentExists`).
    [[nodiscard]] int segmentParameter(SegmentParameter parameter) const;
    /// Sets a parameter of the chosen segment; nothing when there is no such segment. Ruler marks are left to
    /// the caller's refresh, here and below.
    void setSegmentParameter(SegmentParameter parameter, int value);
    /// Sets a parameter of every point of every path, those without a segment included.
    void setParameterEverywhere(SegmentParameter parameter, int value);

    /// Whether part of the height map is painted coarsely at present: a large map at a small scale is
    /// averaged in steps, so that the window stays responsive, and each finished part is repainted.
    [[nodiscard]] bool isRefining() const { return refining.isActive(); }

    /// Whether the left button is held on the canvas: something is being drawn or dragged.
    [[nodiscard]] bool isGestureActive() const { return pressed; }

    /// What the mouse has begun, and the chosen segment.
    [[nodiscard]] const EditingState& editingState() const { return editor.State(); }

    /// The widget pixel of the cursor; none while it is not over the canvas.
    [[nodiscard]] std::optional<QPointF> cursorPlace() const { return cursorAt; }

    // What keys do. Each change is one step; nothing happens without an image or while a button is held.

    /// The widget pixel of the point that keys act on: the one under the cursor, or else the last one that
    /// was drawn, dragged, inserted or chosen.
    [[nodiscard]] std::optional<QPoint> touchedPlace() const;
    /// Whether that point was chosen or moved by a key, and not by the mouse since.
    [[nodiscard]] bool isPointChosenByKey() const;
    /// Moves that point by tenths of an image pixel. @return whether there is one
    bool nudgePoint(const QPoint& tenths);
    /// Removes that point, or its path when that has fewer than 3 points. @return whether there was one
    bool removePoint();
    /// Adds a point at a widget pixel as a click there would.
    bool addPoint(const QPointF& place);
    /// Puts a point on the segment under the cursor, or in the middle of the chosen one.
    bool splitSegment();
    /// Makes the next (1) or previous (-1) point the touched one.
    bool choosePoint(int delta);
    /// Closes every open path.
    void closePaths();
    /// Ends what the left button, when it is held, has begun: a dragged point moves back. No point is touched
    /// afterwards.
    void giveUp();

  signals:
    /// The cursor, the point under it, or what is drawn to it may have changed; or the canvas was scrolled.
    void cursorChanged();
    /// A point was inserted or removed anywhere in a path: a segment's number may now belong to another.
    void segmentsShifted();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    [[nodiscard]] QPixmap Image() const;
    [[nodiscard]] bool HasImage() const { return !Image().isNull(); }
    [[nodiscard]] CanvasScale Scale() const { return CanvasScale(size()); }
    [[nodiscard]] bool RulerShown() const;
    void RefreshRulerIfShown();
    void FollowGeometry();
    /// @return whether there was a segment under the cursor to put a point on
    bool SplitByMouse();
    /// Makes an edit requested by key. @param edit returns whether it changed anything visible
    bool EditByKey(const std::function<bool()>& edit);

    /// Where a point of a path and the segments that meet in it are painted.
    [[nodiscard]] QRect PlaceOfPoint(PointIndex at) const;
    /// Around a point and its neighbours in the path.
    [[nodiscard]] Extent ExtentOfPoint(PointIndex at) const;
    /// Where the rubber band and the point under the cursor with its label are painted.
    [[nodiscard]] QRegion PlaceOfCursor() const;
    [[nodiscard]] QRect PlaceOf(const Extent& extent) const;
    void FollowPaths(const PathsChange& change);
    void FollowRulerMarks(const RulerMarksChange& change);
    void FollowRestored();
    void PaintPart(QPainter& painter, const QRect& place, double ratio);
    void PaintDisabled(QImage& part) const;

    RulerOwner* mainWindow;
    std::unique_ptr<TrackDocument> ownDocument; ///< until another is set
    TrackDocument* doc;
    PathEditor editor;
    bool pressed = false;              ///< the left button is held
    std::optional<QPointF> cursorAt;   ///< in widget pixels, while it is over the canvas
    bool repaintsReplacedPaths = true; ///< false while paths are reset quietly
    PathExtents extents;
    ShapeCache shapes;
    HeightMapView view;
    QRegion coarse;            ///< what of the canvas is painted coarsely, in device pixels
    QBasicTimer refining;      ///< active while `coarse` is not empty
    std::vector<QRgb> strip;   ///< what a part of the canvas is painted on
    bool bandsPainted = false; ///< whether the last paint showed the ruler
};
