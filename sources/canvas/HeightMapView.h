#pragma once

#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QRegion>
#include <QSize>

/// The height map stretched to the canvas, computed only where it is visible.
///
/// The pixels are those of a smooth scaling of the complete image, but no scaled copy of it is kept: at 400 %
/// it would take sixteen times the image's memory. The visible part is kept, so that repainting it is a copy;
/// nothing is kept when the view is larger than kMaxKept. All sizes and places are in device pixels.
///
/// A large map at a small scale takes longer to average than an operator should wait. One paint averages no
/// more than kMaxRead pixels of the map and shows the rest coarsely; the caller repaints that in steps.
class HeightMapView {
  public:
    /// Pixels kept at most: those of a large screen.
    static constexpr int kMaxKept = 5120 * 2880;
    /// Pixels of the map that one paint, from Show to ReleaseImage, averages at most; it always completes one
    /// row.
    static constexpr double kMaxRead = 4'000'000;

    /// Stretches `pixmap` to `size`. What is kept is forgotten when either is another than before.
    /// @param visible what the operator can see of the canvas now
    /// @param maxRead pixels of the map that this paint may average
    void Show(const QPixmap& pixmap, const QSize& size, const QRect& visible, double maxRead = kMaxRead);

    /// Releases the image, so that it does not outlive the label's pixmap; Show acquires it again.
    void ReleaseImage() { source = {}; }

    /// Forgets everything, the image too.
    void Clear();

    /// Copies a part, which must lie inside the size shown, to the top left of `out` (Format_RGB32).
    /// @return what of it is coarse, since the paint has read all that it may
    QRegion Copy(const QRect& part, QImage& out);

    /// The upper rows of a place, as many as one paint can average, and at least one.
    [[nodiscard]] QRect UpperRows(const QRect& place, double maxRead = kMaxRead / 2) const;

  private:
    void KeepVisible(const QRect& visible);
    QRegion CompleteKept(const QRect& part);
    QRect Render(const QRect& part, QImage& out, const QPoint& place);
    [[nodiscard]] double ReadByRow(const QRect& place) const;

    qint64 key = 0;
    QSize size;
    QSize mapSize;
    double mayRead = 0; ///< pixels of the map, in this paint
    QImage source;
    QImage kept;
    QRect keptPlace;
    QRegion valid;
};
