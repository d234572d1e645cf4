#include "CanvasContestants.h"

#include "CanvasStage.h"
#include "PathLayouts.h"
#include "canvas/qmaskwidget.h"
#include "document/formats/Converter.h"
#include "window/ReadOuts.h"
#include "window/ViewNavigation.h"
#include "window/ViewScale.h"

#include <QStatusBar>
#include <QWheelEvent>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

constexpr int kTimes = 41;
constexpr int kRuledMap = 4000;
const QPointF kMiddleOfView(600, 400);

CanvasStage::Kind KindAt(const Arguments& arguments) {
    return arguments.at(0) == "canvas" ? CanvasStage::Kind::Canvas : CanvasStage::Kind::PlainLabel;
}

/// A stage with a surface of the given side at the given scale.
std::unique_ptr<CanvasStage> StageAt(const Arguments& arguments) {
    const int side = NumberAt(arguments, 1);
    auto stage = std::make_unique<CanvasStage>(KindAt(arguments), SurfaceImage(side, side));
    stage->Zoom(NumberAt(arguments, 2));
    return stage;
}

/// The median time of work that is fast enough to repeat.
double UsualSecondsOf(const std::function<void(int)>& work) {
    std::vector<double> seconds;
    seconds.reserve(kTimes);
    for (int time = 0; time < kTimes; ++time)
        seconds.push_back(SecondsOf([&] { work(time); }));
    return Median(seconds);
}

Figures FirstPaint(const Arguments& arguments) {
    const int side = NumberAt(arguments, 1);
    const int percent = NumberAt(arguments, 2);
    CanvasStage stage(KindAt(arguments), SurfaceImage(side, side));
    const MemoryWatch memory;
    stage.Zoom(percent - 5); // one slider step earlier
    const double seconds = SecondsOf([&] { stage.Zoom(percent); });
    return {{"seconds", seconds}, {"bytes", memory.PeakBytes()}};
}

Figures Repaint(const Arguments& arguments) {
    const auto stage = StageAt(arguments);
    return {{"seconds", UsualSecondsOf([&](int) { stage->RepaintAll(); })}};
}

Figures RepaintSmall(const Arguments& arguments) {
    const auto stage = StageAt(arguments);
    return {{"seconds", UsualSecondsOf([&](int) { stage->Repaint({600, 400, 64, 64}); })}};
}

Figures MoveMouse(const Arguments& arguments) {
    const auto stage = StageAt(arguments);
    return {{"seconds", UsualSecondsOf([&](int time) {
                 stage->MoveMouse(kMiddleOfView + QPointF(time, time), Qt::NoButton);
             })}};
}

int LargestDifference(const QImage& one, const QImage& other) {
    int largest = one.size() == other.size() ? 0 : 255;
    for (int row = 0; largest < 255 && row < one.height(); ++row)
        for (int byte = 0; byte < one.width() * 4; ++byte)
            largest =
                std::max(largest, std::abs(one.constScanLine(row)[byte] - other.constScanLine(row)[byte]));
    return largest;
}

QImage PictureOf(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

Figures ComparePixels(const Arguments& /*arguments*/) {
    const QImage noise = NoiseImage(403, 297);
    CanvasStage canvas(CanvasStage::Kind::Canvas, noise);
    CanvasStage label(CanvasStage::Kind::PlainLabel, noise);
    double full = 0;
    double upper = 0;
    double lower = 0;
    for (int percent = 5; percent <= 400; percent += 5) {
        canvas.Zoom(percent);
        label.Zoom(percent);
        const int difference = LargestDifference(PictureOf(canvas.Widget()), PictureOf(label.Widget()));
        const bool isWhole = percent == 50 || percent == 100 || percent == 200 || percent == 400;
        double& group = isWhole ? full : percent >= 35 ? upper : lower;
        group = std::max<double>(group, difference);
    }
    return {{"whole", full}, {"upper", upper}, {"lower", lower}};
}

/// Loads paths from a seed over the visible part of the canvas.
void LayPaths(CanvasStage& stage, const std::string& file, int paths, int points, double step) {
    const QSizeF canvas = stage.Widget().size();
    const QSizeF seen = canvas.boundedTo(QSizeF(stage.View().size()));
    WritePathFile(file, paths, points, {0, 0, seen.width() / canvas.width(), seen.height() / canvas.height()},
                  step);
    if (stage.Canvas().loadPaths(QString::fromStdString(file)) != 0)
        throw std::runtime_error("cannot load " + file);
}

Figures PaintPoints(const Arguments& arguments) {
    constexpr int kPointsPerPath = 100;
    CanvasStage stage(CanvasStage::Kind::Canvas, SurfaceImage(kRuledMap, kRuledMap));
    stage.Zoom(NumberAt(arguments, 2));
    LayPaths(stage, arguments.at(0), NumberAt(arguments, 1) / kPointsPerPath, kPointsPerPath, 0.01);
    stage.Canvas().setCurrentPath(-1);
    stage.RepaintAll();
    return {{"seconds", UsualSecondsOf([&](int) { stage.RepaintAll(); })}};
}

/// The place on the canvas of the middle point of a path that starts near the middle of the visible part.
QPointF DraggedPlace(const CanvasStage& stage) {
    const auto& paths = stage.Canvas().paths();
    const auto& points = paths.at(paths.size() / 2).points;
    const QPointF point = points.at(points.size() / 2);
    return {point.x() * stage.Widget().width(), point.y() * stage.Widget().height()};
}

/// A stage with paths, the ruler and all of the map shown, and a point in the middle under the mouse button.
class DragStage {
  public:
    explicit DragStage(const Arguments& arguments)
        : stage(CanvasStage::Kind::Canvas, SurfaceImage(kRuledMap, kRuledMap)) {
        stage.Zoom(20); // all of the map is visible, and so every path
        LayPaths(stage, arguments.at(0), NumberAt(arguments, 1), NumberAt(arguments, 2), 0.01);
        stage.ShowRuler(true);
        start = DraggedPlace(stage);
        stage.MoveMouse(start, Qt::NoButton);
        stage.PressMouse(start);
    }

    void Step(int time) { stage.MoveMouse(start + QPointF(time % 7, time % 5), Qt::LeftButton); }
    [[nodiscard]] TrackDocument& Document() const { return stage.Canvas().document(); }
    [[nodiscard]] double Bands() const {
        std::size_t bands = 0;
        for (const TrackPath& path : Document().paths())
            for (const RulerMarks& segment : path.rulerMarks)
                bands += segment.bands.size();
        return static_cast<double>(bands);
    }

  private:
    CanvasStage stage;
    QPointF start;
};

Figures Drag(const Arguments& arguments) {
    DragStage stage(arguments);
    const double bands = stage.Bands();
    return {{"seconds", UsualSecondsOf([&](int time) { stage.Step(time); })}, {"bands", bands}};
}

/// Undoes and redoes a drag in turn.
Figures Undo(const Arguments& arguments) {
    DragStage stage(arguments);
    stage.Step(8);
    return {{"seconds", UsualSecondsOf([&](int time) {
                 if (time % 2 == 0)
                     stage.Document().undo();
                 else
                     stage.Document().redo();
                 QApplication::processEvents();
             })}};
}

Figures LongestOperation(const Arguments& arguments) {
    const int side = NumberAt(arguments, 0);
    CanvasStage stage(CanvasStage::Kind::Canvas, SurfaceImage(side, side));
    Figures longest;
    const auto take = [&longest](const char* name, const std::function<void()>& work) {
        double& known = longest[name];
        known = std::max(known, SecondsOf(work));
        longest["seconds"] = std::max(longest["seconds"], known);
    };
    const auto refine = [&] {
        while (stage.Canvas().isRefining())
            take("refine", [] { QApplication::processEvents(); });
    };
    for (int percent = 5; percent <= 400; percent += 5) {
        take("zoom", [&] { stage.Zoom(percent); });
        refine();
        take("repaint", [&] { stage.RepaintAll(); });
        take("move", [&] { stage.MoveMouse(kMiddleOfView, Qt::NoButton); });
        take("rubber band", [&] { stage.MoveMouse(kMiddleOfView + QPointF(50, 50), Qt::LeftButton); });
        take("scroll", [&] {
            stage.View().ensureVisible(stage.Widget().width(), stage.Widget().height());
            QApplication::processEvents();
        });
        refine();
        take("scroll", [&] {
            stage.View().ensureVisible(0, 0);
            QApplication::processEvents();
        });
        refine();
    }
    return longest;
}

/// A stage whose wheel zooms as in the program's window.
class WheelStage {
  public:
    explicit WheelStage(int side) : stage(CanvasStage::Kind::Canvas, SurfaceImage(side, side)) {
        TrackContent content;
        content.info.xResolution = content.info.yResolution = 1.0;
        content.image = SurfaceImage(side, side);
        stage.Canvas().document().open(std::move(content), {}, TrackOrigin::External);
        slider.setRange(1, 80);
        QObject::connect(&slider, &QSlider::valueChanged, [this](int value) { scale.apply(value); });
    }

    /// Goes to a scale in steps of 5 % and waits for the complete picture.
    void Show(int value) {
        slider.setValue(value);
        Finish();
    }
    void Turn(int steps) {
        const QPoint place = stage.View().rect().center() - stage.Widget().pos();
        QWheelEvent event(place, stage.Widget().mapToGlobal(place), QPoint(),
                          QPoint(0, steps * QWheelEvent::DefaultDeltasPerStep), Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&stage.Widget(), &event);
        Finish();
    }

  private:
    void Finish() {
        do
            QApplication::processEvents();
        while (stage.Canvas().isRefining());
    }

    CanvasStage stage;
    QSlider slider;
    QLabel label;
    ViewScale scale{slider, label, stage.View(), stage.Canvas(), stage.Canvas().document()};
    ViewNavigation navigation{{stage.View(), stage.View(), stage.Canvas(), scale, [] { return false; }}};
};

/// The longest wait for a wheel step from 25 % up; of each step the median of several.
Figures TurnWheel(const Arguments& arguments) {
    constexpr int kLowest = 5;
    constexpr int kHighest = 80;
    constexpr int kTurns = 5;
    WheelStage stage(NumberAt(arguments, 0));
    double slowest = 0;
    for (int value = kLowest; value <= kHighest; ++value) {
        std::vector<double> seconds;
        for (int turn = 0; turn < kTurns; ++turn) {
            stage.Show(value - 1);
            const double start = ElapsedSeconds();
            stage.Turn(1);
            seconds.push_back(ElapsedSeconds() - start);
        }
        slowest = std::max(slowest, Median(seconds));
    }
    return {{"wall", slowest}};
}

/// The longest that one move of the mouse over a track keeps the window busy, its read-outs and what they
/// prepare in the background included. From the moment that the track is open, at 25 %.
Figures Hover(const Arguments& arguments) {
    constexpr int kMoves = 1000;
    const std::string& file = arguments.at(0);
    TrackContent content;
    if (CreateConverter(file)->ReadInfo(file, content.info) != 0)
        throw std::runtime_error("cannot read " + file);
    content.image = SurfaceImage(content.info.width, content.info.height);
    CanvasStage stage(CanvasStage::Kind::Canvas, content.image);
    stage.Zoom(25);
    QStatusBar bar;
    const ReadOuts readOuts(bar, stage.Canvas());
    stage.Canvas().document().open(std::move(content), file, TrackOrigin::External);
    const QSize seen = stage.Widget().size().boundedTo(stage.View().size());
    std::uniform_int_distribution column(0, seen.width() - 1);
    std::uniform_int_distribution row(0, seen.height() - 1);
    std::mt19937 random(7);
    double longest = 0;
    for (int move = 0; move < kMoves; ++move) {
        const QPointF place(column(random), row(random));
        const double start = ElapsedSeconds();
        stage.MoveMouse(place, Qt::NoButton);
        longest = std::max(longest, ElapsedSeconds() - start);
    }
    if (bar.findChild<QLabel*>(QStringLiteral("label_height"))->text().isEmpty())
        throw std::runtime_error("no height was shown");
    return {{"wall", longest}};
}

} // namespace

Contestants CanvasContestants() {
    return {{"zoom", FirstPaint},
            {"repaint", Repaint},
            {"repaint-small", RepaintSmall},
            {"mouse-move", MoveMouse},
            {"pixels", ComparePixels},
            {"points", PaintPoints},
            {"drag", Drag},
            {"undo", Undo},
            {"wheel", TurnWheel},
            {"hover", Hover},
            {"blocking", LongestOperation}};
}
