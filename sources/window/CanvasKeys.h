#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QMaskWidget;
class QScrollArea;
class SegmentPanel;

/// Editing by keys: while the canvas has the focus they move, add, insert, remove and choose points and
/// choose segments. While a mouse button is held only Escape does anything.
class CanvasKeys final : public QObject {
  public:
    struct Context {
        QWidget& window; ///< gets the key that moves the focus to the canvas
        QScrollArea& area;
        QMaskWidget& canvas;
        SegmentPanel& segments;
        std::function<bool()> isBusy; ///< whether editing is blocked at present
    };

    /// All are borrowed and outlive the object.
    explicit CanvasKeys(Context context);

  private:
    using Act = std::function<void()>;

    void addMovements();
    void addPointKeys();
    void addSegmentKeys();
    void add(const char* name, const QString& text, const QStringList& keys, const Act& act);
    void addMovement(const char* name, const QString& text, const QString& key, const QPoint& direction);
    /// Moves the touched point, or else scrolls; a direction has the length 1.
    void move(const QPoint& direction, int tenths);
    void addPoint();
    void showTouchedPoint();
    void chooseSegment(int delta);
    [[nodiscard]] bool mayEdit() const;

    Context context;
};
