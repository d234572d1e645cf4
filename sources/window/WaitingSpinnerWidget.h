#pragma once

#include <QColor>
#include <QWidget>

class QPainter;
class QTimer;

/// A small frameless busy indicator: a ring of rounded bars, the leading one in full colour and the others
/// fading behind it. It is a separate window over its parent, which it can keep disabled while it spins.
class WaitingSpinnerWidget final : public QWidget {
    Q_OBJECT

  public:
    /// A hidden spinner of 40 × 40 pixels.
    /// @param centreOnParent keep the spinner over the middle of its parent
    /// @param disableParent disable the parent from start() to stop()
    WaitingSpinnerWidget(Qt::WindowModality modality, QWidget* parent, bool centreOnParent,
                         bool disableParent);

    /// The distance in pixels from the centre to the inner end of each bar; the widget's size follows.
    void setInnerRadius(int pixels);
    /// The length of a bar in pixels; the widget's size follows.
    void setLineLength(int pixels);

    /// The colour of the leading bar, black unless it is set.
    void setLineColor(const QColor& colour) { lineColor = colour; }

    [[nodiscard]] bool isSpinning() const { return spinning; }

  public slots:
    /// Shows the spinner and starts it from the first bar; a spinning one continues.
    void start();
    /// Hides the spinner and enables the parent again.
    void stop();
    /// Advances the leading bar by one place.
    void rotate();

  protected:
    /// Only stop() ends the spinning, not a window manager's key.
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void updateSize();
    void updateInterval();
    void moveToCentre();
    void setParentEnabled(bool enabled);
    void paintBar(QPainter& painter, int bar) const;
    [[nodiscard]] int stepsBehindLeader(int bar) const;
    [[nodiscard]] QColor barColor(int distance) const;

    QColor lineColor = Qt::black;
    double cornerRoundness = 100.0;             ///< corner radius, per cent of half a bar's size
    double minTrailOpacity = 3.141592653589793; ///< per cent
    double trailFadePercent = 80.0;             ///< share of the ring over which the trail fades
    double revolutionsPerSecond = 1.5707963267948966;
    int lineCount = 20;
    int lineLength = 10;  ///< pixels
    int lineWidth = 2;    ///< pixels
    int innerRadius = 10; ///< pixels
    bool centreOnParent;
    bool disableParent;
    int currentLine = 0; ///< the leading bar
    bool spinning = false;
    QTimer* stepTimer; ///< a child of the widget
};
