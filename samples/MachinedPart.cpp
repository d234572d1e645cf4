#include "samples/MachinedPart.h"

#include "samples/Noise.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Millimetres above the table, except those relative to the part's size.
constexpr double kPlateTop = 7.0;
constexpr double kBossHeight = 3.0;
constexpr double kGrooveDepth = 3.0;
constexpr double kSeamHeight = 1.6;
constexpr double kMiddleOfRange = 5.0;
constexpr double kInset = 0.06;  ///< of the plate in the picture
constexpr double kCorner = 0.07; ///< radius
constexpr double kChamfer = 0.012;
constexpr double kLineHalfWidth = 0.035;
constexpr double kSteepest = 1.5; ///< millimetres per millimetre; steeper walls hide part of the view

struct Circle {
    double x, y; ///< shares of width and height
    double radius;
};

constexpr Circle kBoss = {0.21, 0.70, 0.11};
constexpr std::array<Circle, 5> kHoles = {
    {{0.74, 0.30, 0.11}, {0.10, 0.15, 0.030}, {0.90, 0.15, 0.030}, {0.10, 0.90, 0.030}, {0.90, 0.90, 0.030}}};

double Distance(double x, double y) {
    return std::sqrt(x * x + y * y);
}

/// The distance of a point from the line segment between two others.
double DistanceFromPiece(double x, double y, double fromX, double fromY, double toX, double toY) {
    const double alongX = toX - fromX;
    const double alongY = toY - fromY;
    const double share = ((x - fromX) * alongX + (y - fromY) * alongY) / (alongX * alongX + alongY * alongY);
    const double inside = std::clamp(share, 0.0, 1.0);
    return Distance(x - fromX - inside * alongX, y - fromY - inside * alongY);
}

/// A wave of period 1 between -1 and 1, made of straight lines.
double Zigzag(double x) {
    return 4.0 * std::fabs(x - std::floor(x) - 0.5) - 1.0;
}

} // namespace

MachinedPart::MachinedPart(Kind kind, int columns, int rows, std::uint32_t seed)
    : kind(kind),
      columns(columns),
      rows(rows),
      seed(seed),
      pitch(std::max(1, kWidth / columns)),
      width(columns * (pitch / 1000.0)),
      height(rows * (pitch / 1000.0)),
      size(std::min(width, height)),
      line{{1000, 3200}, {2700, 3200}, {4300, 6300}, {6200, 7000}, {8800, 5900}} {
    const Noise noise(seed);
    for (std::size_t i = 0; i < line.size(); ++i) {
        line[i].x += static_cast<int>(noise.At(1, static_cast<std::uint32_t>(i)) * 300.0) - 150;
        line[i].y += static_cast<int>(noise.At(2, static_cast<std::uint32_t>(i)) * 300.0) - 150;
    }
}

std::vector<std::int16_t> MachinedPart::Row(int row) const {
    const double step = pitch / 1000.0;
    const double y = (row + 0.5) * step;
    std::vector<double> surface(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column)
        surface[static_cast<std::size_t>(column)] = SurfaceAt((column + 0.5) * step, y);

    const std::vector<bool> hidden = Hidden(surface);
    const Noise noise(seed);
    std::vector<std::int16_t> cells(surface.size(), kNoMeasurement);
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const auto place = static_cast<std::uint32_t>(column);
        const bool lost = noise.At(static_cast<std::uint32_t>(row) + 17, place) < 0.004;
        if (lost || hidden[column] || InHole((static_cast<double>(column) + 0.5) * step, y))
            continue;
        const double measured = surface[column] - kMiddleOfRange + 0.012 * noise.BellAt(row, place);
        cells[column] =
            static_cast<std::int16_t>(std::floor(measured * (1000.0 / kMicrometresPerUnit) + 0.5));
    }
    return cells;
}

std::vector<Path> MachinedPart::Paths() const {
    const int x = static_cast<int>(kBoss.x * 10'000);
    const int y = static_cast<int>(kBoss.y * 10'000);
    return {line, {{x - 900, y}, {x, y}, {x + 900, y}}};
}

/// Anything higher on the right hides what is behind it from the camera there, and a wall that rises too
/// steeply to the right reflects no light to it either.
std::vector<bool> MachinedPart::Hidden(const std::vector<double>& surface) const {
    std::vector<bool> hidden(surface.size());
    const double fall = kSteepest * pitch / 1000.0;
    double horizon = surface.back();
    for (std::size_t column = surface.size(); column-- > 0;) {
        horizon -= fall;
        hidden[column] = surface[column] < horizon;
        horizon = std::max(horizon, surface[column]);
    }
    return hidden;
}

double MachinedPart::SurfaceAt(double x, double y) const {
    const double outside = DistanceOutsidePlate(x, y);
    if (outside > 0.0)
        return 0.15 * Noise(seed).SmoothAt(x * 0.4, y * 0.4);
    const double chamfer = std::max(0.0, outside + kChamfer * size);
    return PlateAt(x, y) + FeatureAt(x, y) - chamfer;
}

/// The milled top: a slight tilt, some unevenness, and the marks that the tool left.
double MachinedPart::PlateAt(double x, double y) const {
    const double tilt = 1.2 * (x / width) - 0.7 * (y / height);
    return kPlateTop + tilt + 0.12 * Noise(seed).SmoothAt(x * 0.12, y * 0.12) +
           0.02 * Zigzag(x * 0.5 + y * 0.3);
}

double MachinedPart::FeatureAt(double x, double y) const {
    const double fromBoss = Distance(x - kBoss.x * width, y - kBoss.y * height) - kBoss.radius * size;
    const double boss = std::clamp(-fromBoss * 6.0, 0.0, kBossHeight);
    const double share = DistanceFromLine(x, y) / (kLineHalfWidth * size);
    const double profile = share >= 1.0 ? 0.0 : (1.0 - share * share);
    if (kind == Kind::Groove)
        return boss - kGrooveDepth * profile;
    const double scales = 1.0 + 0.12 * Zigzag((x + 0.3 * y) * 0.7);
    return boss + kSeamHeight * profile * scales;
}

bool MachinedPart::InHole(double x, double y) const {
    return std::any_of(kHoles.begin(), kHoles.end(), [&](const Circle& hole) {
        return Distance(x - hole.x * width, y - hole.y * height) < hole.radius * size;
    });
}

double MachinedPart::DistanceFromLine(double x, double y) const {
    double nearest = width + height;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const auto across = [&](int value) { return value * (width / 10'000.0); };
        const auto down = [&](int value) { return value * (height / 10'000.0); };
        nearest = std::min(nearest, DistanceFromPiece(x, y, across(line[i - 1].x), down(line[i - 1].y),
                                                      across(line[i].x), down(line[i].y)));
    }
    return nearest;
}

/// Distance from the outline; negative inside.
double MachinedPart::DistanceOutsidePlate(double x, double y) const {
    const double corner = kCorner * size;
    const double sideways = std::fabs(x - width / 2) - (width / 2 - kInset * size - corner);
    const double upwards = std::fabs(y - height / 2) - (height / 2 - kInset * size - corner);
    const double outside = Distance(std::max(sideways, 0.0), std::max(upwards, 0.0));
    return outside + std::min(std::max(sideways, upwards), 0.0) - corner;
}
