#pragma once

#include "TrackPath.h"

#include <QLabel>

#include <vector>

class RulerOwner;

/// The canvas: shows the height map and lets the operator draw, reshape and measure paths with the mouse.
/// All of it runs on the window's thread. Mouse positions are widget pixels; everything stored is normalised
/// to the canvas (x = pixel / width, y = pixel / height).
class QMaskWidget : public QLabel {
    Q_OBJECT

  public:
    /// The parent's parent is asked for the ruler when it is a RulerOwner.
    explicit QMaskWidget(QWidget* parent = nullptr);

    /// Removes every path and resets the editing state, then repaints.
    void clearAll();
    /// The same without the repaint.
    void resetPaths();
    /// Removes the last point, or the last path when it has fewer than 3 points.
    void deleteLast();
    /// Whether path `path` has a segment `segment` (both from 0, not checked for being negative).
    [[nodiscard]] bool segmentExists(int path, int segment) const;
    /// Empties the marks of every path, then repaints.
    void clearRulerMarks();
    /// Rebuilds the marks of every path for the aspect-corrected image size, then repaints.
    void computeRulerMarks(int imageWidth, int imageHeight);
    /// Has the file's converter read its paths. @return 0, or the converter's failure code.
    int loadPaths(const QString& fileName);
    /// Writes the paths, with the rest of `original`, into the binary track file `target`.
    /// @throws Ve::Exception with status bERROR_TRACK
    void SavePath(const QString& original, const QString& target, double widthScale, double xOffset,
                  double yOffset, double xScale, double yScale);

  private:
    RulerOwner* mainWindow;
};
