#include "window/WaitingSpinnerWidget.h"

#include <QCloseEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>

WaitingSpinnerWidget::WaitingSpinnerWidget(Qt::WindowModality modality, QWidget* parent, bool centreOnParent,
                                           bool disableParent)
    : QWidget(parent, Qt::Dialog | Qt::FramelessWindowHint),
      centreOnParent(centreOnParent),
      disableParent(disableParent),
      stepTimer(new QTimer(this)) {
    connect(stepTimer, &QTimer::timeout, this, &WaitingSpinnerWidget::rotate);
    updateSize();
    updateInterval();
    setWindowModality(modality);
    setAttribute(Qt::WA_TranslucentBackground);
    hide();
}

void WaitingSpinnerWidget::setInnerRadius(int pixels) {
    innerRadius = pixels;
    updateSize();
}

void WaitingSpinnerWidget::setLineLength(int pixels) {
    lineLength = pixels;
    updateSize();
}

void WaitingSpinnerWidget::start() {
    moveToCentre();
    spinning = true;
    show();
    setParentEnabled(false);
    if (!stepTimer->isActive()) {
        stepTimer->start();
        currentLine = 0;
    }
}

void WaitingSpinnerWidget::stop() {
    spinning = false;
    hide();
    setParentEnabled(true);
    if (stepTimer->isActive()) {
        stepTimer->stop();
        currentLine = 0;
    }
}

void WaitingSpinnerWidget::rotate() {
    ++currentLine;
    if (currentLine >= lineCount)
        currentLine = 0;
    update();
}

void WaitingSpinnerWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
}

void WaitingSpinnerWidget::paintEvent(QPaintEvent* /*event*/) {
    moveToCentre();
    if (currentLine >= lineCount)
        currentLine = 0;

    QPainter painter(this);
    painter.fillRect(rect(), Qt::transparent);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(Qt::NoPen);
    for (int bar = 0; bar < lineCount; ++bar)
        paintBar(painter, bar);
}

void WaitingSpinnerWidget::paintBar(QPainter& painter, int bar) const {
    const double centre = innerRadius + lineLength;
    painter.save();
    painter.translate(centre, centre);
    painter.rotate(360.0 * bar / lineCount);
    painter.translate(innerRadius, 0);
    painter.setBrush(barColor(stepsBehindLeader(bar)));
    painter.drawRoundedRect(QRect(0, -(lineWidth / 2), lineLength, lineWidth), cornerRoundness,
                            cornerRoundness, Qt::RelativeSize);
    painter.restore();
}

int WaitingSpinnerWidget::stepsBehindLeader(int bar) const {
    const int distance = currentLine - bar;
    return distance < 0 ? distance + lineCount : distance;
}

QColor WaitingSpinnerWidget::barColor(int distance) const {
    QColor color = lineColor;
    if (distance == 0)
        return color;
    const double floor = minTrailOpacity / 100.0;
    const int threshold = static_cast<int>(std::ceil((lineCount - 1) * trailFadePercent / 100.0));
    const double step = (color.alphaF() - floor) / (threshold + 1);
    const double alpha = distance > threshold ? floor : color.alphaF() - distance * step;
    color.setAlphaF(std::clamp(alpha, 0.0, 1.0));
    return color;
}

void WaitingSpinnerWidget::updateSize() {
    const int side = 2 * (innerRadius + lineLength);
    setFixedSize(side, side);
}

void WaitingSpinnerWidget::updateInterval() {
    stepTimer->setInterval(static_cast<int>(1000.0 / (lineCount * revolutionsPerSecond)));
}

void WaitingSpinnerWidget::moveToCentre() {
    const QWidget* const under = parentWidget();
    if (under == nullptr || !centreOnParent)
        return;
    move(static_cast<int>(under->x() + under->width() * 0.5 - width() * 0.5),
         static_cast<int>(under->y() + under->height() * 0.5 - height() * 0.5));
}

void WaitingSpinnerWidget::setParentEnabled(bool enabled) {
    if (parentWidget() != nullptr && disableParent)
        parentWidget()->setEnabled(enabled);
}
