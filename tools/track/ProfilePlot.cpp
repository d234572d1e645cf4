#include "tools/track/ProfilePlot.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMargin = 10;
constexpr int kTickLength = 4;
constexpr int kTicksWanted = 8;

const QColor kCurve(0, 90, 180);
const QColor kGrid(220, 220, 220);
const QColor kPoint(220, 120, 0);

/// What text on a picture needs of Qt, without a display and without a word on standard error.
class OffscreenFonts {
  public:
    OffscreenFonts() : before(qInstallMessageHandler(Ignore)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit()); // else one would be made, and stay
        application.emplace(count, words);
    }
    OffscreenFonts(const OffscreenFonts&) = delete;
    OffscreenFonts& operator=(const OffscreenFonts&) = delete;
    ~OffscreenFonts() {
        application.reset();
        qInstallMessageHandler(before);
    }

  private:
    static void Ignore(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {}

    QtMessageHandler before;
    QTemporaryDir runtime;
    int count = 1;
    char name[14] = "corvane-track";
    char* words[2] = {name, nullptr};
    std::optional<QGuiApplication> application;
};

/// One axis: a range of values, and round numbers in it.
class Axis {
  public:
    Axis(double low, double high) : low(low), high(high) {
        if (!(low < high)) { // a single height, or no length
            this->low = low - 1.0;
            this->high = high + 1.0;
        }
        const double wanted = (this->high - this->low) / kTicksWanted;
        const double power = std::pow(10.0, std::floor(std::log10(wanted)));
        const double digit = wanted / power;
        step = power * (digit <= 1.0 ? 1.0 : digit <= 2.0 ? 2.0 : digit <= 5.0 ? 5.0 : 10.0);
    }

    [[nodiscard]] double Part(double value) const { return (value - low) / (high - low); }

    [[nodiscard]] std::vector<double> Ticks() const {
        std::vector<double> ticks;
        const double first = std::ceil(low / step - 1e-9);
        const double last = std::floor(high / step + 1e-9);
        for (double tick = first; tick <= last && ticks.size() < 100; ++tick)
            ticks.push_back(tick * step);
        return ticks;
    }

  private:
    double low;
    double high;
    double step = 1.0;
};

Axis HeightAxis(const HeightProfile& profile) {
    double low = 0.0;
    double high = 0.0;
    bool isFirst = true;
    for (const ProfileSample& sample : profile.samples) {
        if (!sample.height)
            continue;
        low = isFirst ? *sample.height : std::min(low, *sample.height);
        high = isFirst ? *sample.height : std::max(high, *sample.height);
        isFirst = false;
    }
    const double space = (high - low) * 0.05;
    return {low - space, high + space};
}

QString Label(double value) {
    return QString::number(std::abs(value) < 1e-12 ? 0.0 : value, 'g', 6);
}

class Plot {
  public:
    Plot(const HeightProfile& profile, const QSize& size)
        : profile(profile),
          distances(0.0, profile.points.back()),
          heights(HeightAxis(profile)),
          picture(size, QImage::Format_RGB32),
          painter(&picture) {
        picture.fill(Qt::white);
        painter.setRenderHint(QPainter::Antialiasing);
        QFont font = painter.font();
        font.setPixelSize(12);
        painter.setFont(font);
    }

    QImage Draw(const QString& title) {
        Arrange();
        painter.drawText(QRectF(frame.left(), kMargin, frame.width(), LineHeight()), Qt::AlignCenter, title);
        DrawDistances();
        DrawHeights();
        DrawPoints();
        DrawCurve();
        painter.setPen(Qt::black);
        painter.drawRect(frame);
        painter.end();
        return picture;
    }

  private:
    [[nodiscard]] int LineHeight() const { return painter.fontMetrics().height(); }

    /// Leaves as much at the left as the widest label takes.
    void Arrange() {
        int widest = 0;
        for (const double tick : heights.Ticks())
            widest = std::max(widest, painter.fontMetrics().horizontalAdvance(Label(tick)));
        const int left = 2 * kMargin + LineHeight() + widest + kTickLength;
        const int bottom = 2 * kMargin + 2 * LineHeight() + kTickLength;
        frame = QRectF(left, 2 * kMargin + LineHeight(), std::max(1, picture.width() - left - 2 * kMargin),
                       std::max(1, picture.height() - bottom - 2 * kMargin - LineHeight()));
    }

    [[nodiscard]] double Across(double distance) const {
        return frame.left() + distances.Part(distance) * frame.width();
    }
    [[nodiscard]] double Down(double height) const {
        return frame.bottom() - heights.Part(height) * frame.height();
    }

    void DrawDistances() {
        for (const double tick : distances.Ticks()) {
            const double x = Across(tick);
            painter.setPen(kGrid);
            painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom() + kTickLength));
            painter.setPen(Qt::black);
            painter.drawText(QRectF(x - 50, frame.bottom() + kTickLength, 100, LineHeight()), Qt::AlignCenter,
                             Label(tick));
        }
        painter.drawText(
            QRectF(frame.left(), frame.bottom() + kTickLength + LineHeight(), frame.width(), LineHeight()),
            Qt::AlignCenter, QStringLiteral("distance along the path"));
    }

    void DrawHeights() {
        for (const double tick : heights.Ticks()) {
            const double y = Down(tick);
            painter.setPen(kGrid);
            painter.drawLine(QPointF(frame.left() - kTickLength, y), QPointF(frame.right(), y));
            painter.setPen(Qt::black);
            painter.drawText(QRectF(0, y - 10, frame.left() - 2 * kTickLength, 20),
                             Qt::AlignRight | Qt::AlignVCenter, Label(tick));
        }
        painter.save();
        painter.translate(kMargin, frame.center().y());
        painter.rotate(-90);
        painter.drawText(QRectF(-frame.height() / 2, 0, frame.height(), LineHeight()), Qt::AlignCenter,
                         QStringLiteral("height"));
        painter.restore();
    }

    void DrawPoints() {
        painter.setPen(QPen(kPoint, 1, Qt::DashLine));
        for (const double point : profile.points)
            painter.drawLine(QPointF(Across(point), frame.top()), QPointF(Across(point), frame.bottom()));
    }

    void DrawCurve() {
        painter.setPen(QPen(kCurve, 1.5));
        QPolygonF stretch;
        for (const ProfileSample& sample : profile.samples) {
            if (sample.height) {
                stretch.append({Across(sample.distance), Down(*sample.height)});
                continue;
            }
            DrawStretch(stretch);
            stretch.clear();
        }
        DrawStretch(stretch);
    }

    void DrawStretch(const QPolygonF& stretch) {
        if (stretch.size() == 1)
            painter.drawPoint(stretch.first());
        else
            painter.drawPolyline(stretch);
    }

    const HeightProfile& profile;
    Axis distances;
    Axis heights;
    QImage picture;
    QPainter painter;
    QRectF frame;
};

} // namespace

QImage DrawProfile(const HeightProfile& profile, const QString& title, const QSize& size) {
    const OffscreenFonts fonts;
    return Plot(profile, size).Draw(title);
}
