#pragma once

#include <QObject>
#include <QPoint>
#include <QStringList>

#include <functional>

class QMaskWidget;
class QMouseEvent;
class QScrollArea;
class QWheelEvent;
class ViewScale;

/// Zooming and panning: the wheel with Ctrl, and keys, change the scale; the middle button, or the left one
/// while Space is held, drags the view. Inactive while the left button draws or drags.
class ViewNavigation final : public QObject {
  public:
    struct Context {
        QWidget& window; ///< gets the actions
        QScrollArea& area;
        QMaskWidget& canvas;
        ViewScale& scale;
        std::function<bool()> isBusy; ///< whether the view is blocked at present
    };

    /// All are borrowed and outlive the object.
    explicit ViewNavigation(Context context);

    /// Whether the view is being dragged.
    [[nodiscard]] bool isPanning() const { return panButton != Qt::NoButton; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void addZoomKey(const char* name, const QString& text, const QStringList& keys,
                    const std::function<void()>& zoom);
    /// The place that stays fixed when a key changes the scale: the cursor's, or else the centre.
    [[nodiscard]] QPoint fixedPlace() const;
    [[nodiscard]] bool mayAct() const;
    void turnWheel(const QWheelEvent& event, const QPoint& place);
    /// @return whether the event belongs to a drag of the view
    bool handleMouse(const QMouseEvent& event);
    bool startsPan(const QMouseEvent& event) const;
    void holdSpace(bool held);
    void endPan();
    void showCursor();

    Context context;
    int turned = 0; ///< of the wheel, in eighths of a degree, less than a step
    bool spaceHeld = false;
    Qt::MouseButton panButton = Qt::NoButton;
    QPoint panStart;  ///< of the cursor, on the screen
    QPoint viewStart; ///< of the canvas, in the view
};
