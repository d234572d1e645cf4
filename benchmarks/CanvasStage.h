#pragma once

#include "canvas/qmaskwidget.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QScrollArea>

#include <memory>

class QMaskWidget;

/// A view of 1200 x 800 pixels with a canvas, or a plain label with scaled contents, as in the program's
/// window, on an offscreen display.
class CanvasStage {
  public:
    enum class Kind { Canvas, PlainLabel };

    CanvasStage(Kind kind, const QImage& image);
    ~CanvasStage();

    [[nodiscard]] QLabel& Widget() const { return *widget; }
    /// The canvas; there must be one.
    [[nodiscard]] QMaskWidget& Canvas() const;
    [[nodiscard]] QScrollArea& View() const { return *area; }

    void ShowRuler(bool shown);

    /// Gives the widget the size of the image at a view scale and paints the visible part.
    void Zoom(int percent);

    /// Repaints part of the widget immediately.
    void Repaint(const QRect& part) const { widget->repaint(part); }
    void RepaintAll() const { widget->repaint(); }

    /// Moves the mouse there, in widget pixels, and paints the changed part.
    void MoveMouse(const QPointF& place, Qt::MouseButtons buttons) const;
    void PressMouse(const QPointF& place) const;

  private:
    class Window;

    QSize imageSize;
    std::unique_ptr<Window> window;
    QScrollArea* area;
    QLabel* widget;
};

/// White noise, or a smooth surface, as loading a track makes it.
[[nodiscard]] QImage NoiseImage(int width, int height);
[[nodiscard]] QImage SurfaceImage(int width, int height);
