#include "window/CanvasKeys.h"

#include "canvas/qmaskwidget.h"
#include "window/KeyAction.h"
#include "window/SegmentPanel.h"
#include "window/mainwindow.h"

#include <QScrollArea>
#include <QScrollBar>

#include <utility>

namespace {

constexpr int kOnePixel = 10; ///< in tenths of an image pixel

void Scroll(QScrollBar& bar, int direction) {
    if (direction != 0)
        bar.triggerAction(direction > 0 ? QAbstractSlider::SliderSingleStepAdd
                                        : QAbstractSlider::SliderSingleStepSub);
}

} // namespace

CanvasKeys::CanvasKeys(Context given) : context(std::move(given)) {
    addMovements();
    addPointKeys();
    addSegmentKeys();
    AddToWindow(context.window,
                {"action_canvas", MainWindow::tr("Go to the Canvas"), {QStringLiteral("F6")}, [this] {
                     context.canvas.setFocus(Qt::ShortcutFocusReason);
                 }});
}

void CanvasKeys::addMovements() {
    addMovement("action_moveLeft", MainWindow::tr("Move Left"), QStringLiteral("Left"), {-1, 0});
    addMovement("action_moveRight", MainWindow::tr("Move Right"), QStringLiteral("Right"), {1, 0});
    addMovement("action_moveUp", MainWindow::tr("Move Up"), QStringLiteral("Up"), {0, -1});
    addMovement("action_moveDown", MainWindow::tr("Move Down"), QStringLiteral("Down"), {0, 1});
}

void CanvasKeys::addMovement(const char* name, const QString& text, const QString& key,
                             const QPoint& direction) {
    struct Step {
        const char* suffix;
        QString modifier;
        int tenths;
    };
    for (const Step& step :
         {Step{"", QString(), kOnePixel}, Step{"Far", QStringLiteral("Shift+"), 10 * kOnePixel},
          Step{"Fine", QStringLiteral("Alt+"), kOnePixel / 10}})
        add((std::string(name) + step.suffix).c_str(), text, {step.modifier + key},
            [this, direction, tenths = step.tenths] { move(direction, tenths); });
}

void CanvasKeys::addPointKeys() {
    add("action_removePoint", MainWindow::tr("Remove Point"), {QStringLiteral("Del")},
        [this] { context.canvas.removePoint(); });
    add("action_insertPoint", MainWindow::tr("Insert Point"), {QStringLiteral("Ins")}, [this] {
        if (context.canvas.splitSegment())
            showTouchedPoint();
    });
    add("action_addPoint", MainWindow::tr("Add Point"), {QStringLiteral("A")}, [this] { addPoint(); });
    add("action_nextPoint", MainWindow::tr("Next Point"), {QStringLiteral("P")}, [this] {
        if (context.canvas.choosePoint(1))
            showTouchedPoint();
    });
    add("action_previousPoint", MainWindow::tr("Previous Point"), {QStringLiteral("Shift+P")}, [this] {
        if (context.canvas.choosePoint(-1))
            showTouchedPoint();
    });
    AddToFocused(context.canvas,
                 {"action_giveUp", MainWindow::tr("Give Up"), {QStringLiteral("Esc")}, [this] {
                      if (!context.isBusy())
                          context.canvas.giveUp();
                  }});
}

void CanvasKeys::addSegmentKeys() {
    add("action_deleteLast", MainWindow::tr("Delete Last"), {QStringLiteral("Backspace")},
        [this] { context.segments.deleteLast(); });
    add("action_closePaths", MainWindow::tr("Close Paths"),
        {QStringLiteral("Return"), QStringLiteral("Enter")}, [this] { context.canvas.closePaths(); });
    add("action_nextSegment", MainWindow::tr("Next Segment"), {QStringLiteral("N")},
        [this] { chooseSegment(1); });
    add("action_previousSegment", MainWindow::tr("Previous Segment"), {QStringLiteral("Shift+N")},
        [this] { chooseSegment(-1); });
}

void CanvasKeys::add(const char* name, const QString& text, const QStringList& keys, const Act& act) {
    AddToFocused(context.canvas, {name, text, keys, [this, act] {
                                      if (mayEdit())
                                          act();
                                  }});
}

bool CanvasKeys::mayEdit() const {
    return context.canvas.document().hasImage() && !context.canvas.isGestureActive() && !context.isBusy();
}

void CanvasKeys::move(const QPoint& direction, int tenths) {
    if (context.canvas.nudgePoint(direction * tenths)) {
        showTouchedPoint();
        return;
    }
    Scroll(*context.area.horizontalScrollBar(), direction.x());
    Scroll(*context.area.verticalScrollBar(), direction.y());
}

void CanvasKeys::addPoint() {
    const QRect seen = context.area.viewport()->rect().translated(-context.canvas.pos());
    const auto cursor = context.canvas.cursorPlace();
    const bool underCursor = cursor && seen.contains(cursor->toPoint());
    const QRect shown = seen.intersected(context.canvas.rect());
    if (context.canvas.addPoint(underCursor ? *cursor : shown.center()))
        showTouchedPoint();
}

void CanvasKeys::showTouchedPoint() {
    if (const auto place = context.canvas.touchedPlace())
        context.area.ensureVisible(place->x(), place->y());
}

void CanvasKeys::chooseSegment(int delta) {
    context.segments.chooseNeighbour(delta);
    const int path = context.canvas.currentPath();
    const int segment = context.canvas.currentSegment();
    if (!context.canvas.segmentExists(path, segment))
        return;
    const QPointF start =
        context.canvas.paths()[static_cast<std::size_t>(path)].points[static_cast<std::size_t>(segment)];
    const QPoint place = CanvasScale(context.canvas.size()).toWidgetPixels(start);
    context.area.ensureVisible(place.x(), place.y());
}
