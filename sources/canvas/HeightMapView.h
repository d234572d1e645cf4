#pragma once

#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QRegion>
#include <QSize>

/// The height map stretched to the canvas, made only where it is looked at.
///
/// The pixels are those of a smooth scaling of the whole, but no scaled copy of it is kept: at 400 % that
/// would take sixteen times the image's own memory. What is visible is kept, so that painting it again is
/// copying; that is a view's worth of pixels, and nothing when the view is larger than kMostKept.
/// All sizes and places are in the pixels of the device that is painted on.
class HeightMapView {
  public:
    /// Pixels kept at most: 10 MiB.
    static constexpr int kMostKept = 10 * 1024 * 1024 / 4;

    /// Stretches `pixmap` to `size`. What is kept is forgotten when either is another than before.
    /// @param visible what the operator can see of the canvas now
    void Show(const QPixmap& pixmap, const QSize& size, const QRect& visible);

    /// Lets go of the image, so that it does not outlive the label's pixmap; Show takes it up again.
    void ReleaseImage() { source = {}; }

    /// Forgets everything, the image too.
    void Clear();

    /// Copies a part, which must lie inside the size shown, to the top left of `out` (Format_RGB32).
    void Copy(const QRect& part, QImage& out);

  private:
    void KeepVisible(const QRect& visible);
    void CompleteKept(const QRect& part);

    qint64 key = 0;
    QSize size;
    QImage source;
    QImage kept;
    QRect keptPlace;
    QRegion valid;
};
