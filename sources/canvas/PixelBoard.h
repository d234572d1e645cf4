#pragma once

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>

/// Draws solid lines and squares into a part of a larger picture. A pixel is painted when its centre lies
/// inside the shape, or on its right or lower edge; whether it is does not depend on the part, so that parts
/// fit together. Coordinates are the larger picture's pixels.
class PixelBoard {
  public:
    /// @param image in Format_RGB32
    /// @param origin the place of the image's top left pixel in the larger picture
    PixelBoard(QImage& image, const QPoint& origin);

    /// A square round its centre.
    void Square(const QPointF& centre, double side, QRgb colour);

    /// A line with square caps: it reaches half its width beyond both ends.
    void Line(const QPointF& from, const QPointF& to, double width, QRgb colour);

  private:
    void Fill(double left, double right, double top, double bottom, QRgb colour);
    void FillRow(int row, double left, double right, QRgb colour);
    void SlantedLine(const QPointF& from, const QPointF& to, double width, QRgb colour);

    uchar* pixels;
    int stride;
    QRect place;
};
