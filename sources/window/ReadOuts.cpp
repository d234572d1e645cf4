#include "window/ReadOuts.h"

#include "canvas/qmaskwidget.h"
#include "window/KeyAction.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QStatusBar>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

constexpr std::chrono::milliseconds kPreparedAtOnce{4}; ///< the window stays responsive between the slices

/// A number with as many decimals as distinguish steps of a hundredth of `unit`.
QString NumberText(double value, double unit) {
    constexpr double kMaxDigits = 9;
    constexpr double kTooLong = 1e9;
    const double digits = std::isfinite(unit) && unit > 0.0 ? std::ceil(2.0 - std::log10(unit)) : 6.0;
    return std::abs(value) < kTooLong
               ? QString::number(value, 'f', static_cast<int>(std::clamp(digits, 0.0, kMaxDigits)))
               : QString::number(value, 'g', static_cast<int>(kMaxDigits));
}

/// The cell that contains a normalised coordinate from 0 to 1.
int CellAt(double coordinate, int cells) {
    return std::min(static_cast<int>(coordinate * cells), cells - 1);
}

void ShowText(QLabel& label, const QString& text) {
    label.setText(label.fontMetrics().elidedText(text, Qt::ElideRight, label.width()));
}

} // namespace

ReadOuts::ReadOuts(QStatusBar& bar, QMaskWidget& shown)
    : canvas(shown),
      document(shown.document()),
      position(addLabel(bar, "label_position", QStringLiteral("x -12345.678, y -12345.678"))),
      height(addLabel(bar, "label_height", MainWindow::tr("no measurement"))),
      length(addLabel(bar, "label_drawnLength",
                      MainWindow::tr("segment %1, path %2")
                          .arg(QStringLiteral("1234.567"), QStringLiteral("1234.567")))) {
    bar.insertPermanentWidget(0, &position);
    bar.insertPermanentWidget(1, &height);
    bar.insertPermanentWidget(2, &length);
    bar.setMinimumWidth(1); // a narrow window truncates the read-outs; they must not widen it
    AddToFocused(canvas,
                 {"action_copyPosition", MainWindow::tr("Copy Position"), {QStringLiteral("Ctrl+C")}, [this] {
                      copyPosition();
                  }});
    connect(&canvas, &QMaskWidget::cursorChanged, this, &ReadOuts::show);
    connect(&document, &TrackDocument::imageChanged, this, &ReadOuts::openFile);
    connect(&document, &TrackDocument::saved, this, &ReadOuts::openFile);
    connect(&document, &TrackDocument::restored, this, &ReadOuts::show);
}

QLabel& ReadOuts::addLabel(QStatusBar& bar, const char* name, const QString& widestText) {
    auto* const label = new QLabel(&bar);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->ensurePolished(); // from here on its font is the style's
    label->setFixedWidth(label->fontMetrics().horizontalAdvance(widestText + QStringLiteral("  ")));
    return *label;
}

void ReadOuts::openFile() {
    preparing.stop();
    if (document.hasImage())
        probe.Open(document.file(), document.info());
    else
        probe.Close();
    preparing.start(0, this);
    show();
}

void ReadOuts::timerEvent(QTimerEvent* event) {
    if (event->timerId() != preparing.timerId())
        return QObject::timerEvent(event);
    if (!probe.Prepare(kPreparedAtOnce))
        preparing.stop();
    if (height.text().isEmpty())
        show();
}

void ReadOuts::show() {
    const auto at = place();
    ShowText(position, at ? positionAt(*at, MainWindow::tr("x %1, y %2")) : QString());
    ShowText(height, at ? heightAt(*at) : QString());
    ShowText(length, lengthsText());
}

std::optional<QPointF> ReadOuts::place() const {
    if (!document.hasImage())
        return std::nullopt;
    const CanvasScale scale(canvas.size());
    std::optional<QPointF> found;
    if (const EditingState& state = canvas.editingState(); canvas.isPointChosenByKey())
        found = state.dragPoint;
    else if (const auto cursor = canvas.cursorPlace())
        found = scale.toNormalized(*cursor);
    const auto isInside = [](double coordinate) { return coordinate >= 0.0 && coordinate <= 1.0; };
    return found && isInside(found->x()) && isInside(found->y()) ? found : std::nullopt;
}

QString ReadOuts::positionAt(const QPointF& place, const QString& form) const {
    const QPointF world = document.worldTransform().PointOf(place);
    return form.arg(NumberText(world.x(), document.info().xResolution),
                    NumberText(world.y(), document.info().yResolution));
}

QString ReadOuts::heightAt(const QPointF& place) {
    constexpr int kExactDigits = 15; // a number written with so many digits is shown as it was written
    const QSize map = document.image().size();
    const CellHeight cell = probe.At(CellAt(place.x(), map.width()), CellAt(place.y(), map.height()));
    switch (cell.kind) {
    case CellHeight::Kind::Measured:
        return QString::number(cell.height, 'g', kExactDigits);
    case CellHeight::Kind::NotMeasured:
        return MainWindow::tr("no measurement");
    case CellHeight::Kind::Unknown:
        break;
    }
    return {};
}

QString ReadOuts::lengthsText() const {
    const auto drawn = document.hasImage() && !document.paths().empty() ? drawnLengths() : std::nullopt;
    if (!drawn)
        return {};
    const double unit = std::min(document.info().xResolution, document.info().yResolution);
    return MainWindow::tr("segment %1, path %2")
        .arg(NumberText(drawn->segment, unit), NumberText(drawn->path, unit));
}

std::optional<DrawnLengths> ReadOuts::drawnLengths() const {
    const EditingState& state = canvas.editingState();
    const WorldTransform world = document.worldTransform();
    const std::vector<TrackPath>& paths = document.paths();
    const bool isPointMoved =
        !state.dragPoint.isNull() && (canvas.isGestureActive() || canvas.isPointChosenByKey());
    if (isPointMoved && document.hasPoint({state.hoverPath, state.hoverPoint}))
        return LengthsAt(static_cast<std::size_t>(state.hoverPoint),
                         paths[static_cast<std::size_t>(state.hoverPath)], world);
    if (paths.back().points.empty())
        return std::nullopt;
    if (!state.rubberPoint.isNull())
        return LengthsTo(state.rubberPoint, paths.back(), world);
    const auto cursor = canvas.cursorPlace();
    const bool isOpen = static_cast<int>(paths.size()) != document.finishedCount();
    if (!cursor || !isOpen)
        return std::nullopt;
    const CanvasScale scale(canvas.size()); // where a click would put the next point
    return LengthsTo(scale.toNormalized(scale.ClampToMargin(*cursor)), paths.back(), world);
}

void ReadOuts::copyPosition() const {
    if (const auto at = place())
        QApplication::clipboard()->setText(positionAt(*at, QStringLiteral("%1, %2")));
}
