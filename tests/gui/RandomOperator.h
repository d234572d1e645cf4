#pragma once

#include "CanvasFixture.h"

#include <random>

/// A seeded operator: draws, drags, cancels, inserts, deletes, by mouse and by keys, sets parameters, undoes
/// steps, hides and shows the ruler, zooms.
class RandomOperator {
  public:
    RandomOperator(CanvasWindow& window, unsigned seed)
        : window(window), mouse(window.canvas), random(seed) {}

    void Act() {
        switch (Pick(18)) {
        case 0:
        case 1:
            return mouse.Draw(Places(2 + Pick(5)));
        case 2:
        case 3:
        case 4:
        case 5:
            return DragSomePoint();
        case 6:
            return mouse.Release(Place());
        case 7:
            return DeleteLast();
        case 8:
            return SetSomeParameter();
        case 9:
            return ToggleRuler();
        case 10:
            return window.Resize(QSize(150 + Pick(400), 150 + Pick(300)));
        case 11:
            return window.canvas->document().undo();
        case 12:
            return window.canvas->document().redo();
        case 13:
        case 14:
            return EditByKey();
        case 15:
            return mouse.CtrlClick(PlaceOnSegment());
        case 16:
            return GiveUpSomeDrag();
        default:
            mouse.Press(Place());
            mouse.Move(Place());
        }
    }

  private:
    int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }
    QPointF Place() { return {double(Pick(window.canvas->width())), double(Pick(window.canvas->height()))}; }
    std::vector<QPointF> Places(int count) {
        std::vector<QPointF> places;
        for (int i = 0; i < count; ++i)
            places.push_back(Place());
        return places;
    }
    void DragSomePoint() {
        const auto& paths = window.canvas->paths();
        if (paths.empty())
            return;
        const auto& points = paths[std::size_t(Pick(int(paths.size())))].points;
        const QPointF point = points[std::size_t(Pick(int(points.size())))];
        const QPointF at(point.x() * window.canvas->width(), point.y() * window.canvas->height());
        mouse.Release(at);
        mouse.Move(at);
        mouse.Press(at);
        mouse.Move(Place());
        mouse.Release(Place());
    }
    /// Near the middle of some segment, if there is one.
    QPointF PlaceOnSegment() {
        const auto& paths = window.canvas->paths();
        if (paths.empty())
            return Place();
        const auto& points = paths[std::size_t(Pick(int(paths.size())))].points;
        if (points.size() < 2)
            return Place();
        const auto start = std::size_t(Pick(int(points.size()) - 1));
        const QPointF middle = (points[start] + points[start + 1]) / 2;
        return {middle.x() * window.canvas->width() + Pick(5) - 2, middle.y() * window.canvas->height()};
    }
    void GiveUpSomeDrag() {
        mouse.Press(Place());
        mouse.Move(Place());
        window.canvas->giveUp();
        mouse.Move(Place());
        mouse.Release(Place());
    }
    void EditByKey() {
        QMaskWidget& canvas = *window.canvas;
        switch (Pick(8)) {
        case 0:
            return canvas.closePaths();
        case 1:
            canvas.removePoint();
            return;
        case 2:
            canvas.splitSegment();
            return;
        case 3:
            canvas.addPoint(Place());
            return;
        case 4:
            return canvas.giveUp();
        case 5:
            canvas.choosePoint(Pick(2) == 0 ? 1 : -1);
            return;
        default:
            canvas.nudgePoint({Pick(201) - 100, Pick(201) - 100});
        }
    }
    void DeleteLast() {
        if (Pick(20) == 0)
            window.canvas->clearAll();
        window.canvas->deleteLast();
        if (window.shown)
            window.refreshRuler();
    }
    void SetSomeParameter() {
        window.canvas->setCurrentPath(Pick(4));
        window.canvas->setCurrentSegment(Pick(4));
        const auto parameter = static_cast<SegmentParameter>(Pick(4));
        if (Pick(4) == 0)
            window.canvas->setParameterEverywhere(parameter, Pick(120));
        else
            window.canvas->setSegmentParameter(parameter, Pick(120));
        if (window.shown && parameter != SegmentParameter::Method)
            window.refreshRuler();
    }
    void ToggleRuler() {
        window.shown = !window.shown;
        if (window.shown)
            window.refreshRuler();
        else
            window.canvas->clearRulerMarks();
    }

    CanvasWindow& window;
    Mouse mouse;
    std::mt19937 random;
};
