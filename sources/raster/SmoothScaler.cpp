#include "raster/SmoothScaler.h"

#include "raster/ScalingTaps.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using ScalingTaps::Averaging;
using ScalingTaps::Blending;
using ScalingTaps::Covered;
using ScalingTaps::kBlend;

/// Channels in lanes of 16 bits, so that one operation processes four.
using Lanes = std::uint64_t;
constexpr Lanes kLowBytes = 0x00ff00ff00ff00ffULL;

/// The channels of one pixel: blue, red, green, alpha from the lowest lane up.
Lanes Spread(QRgb pixel) {
    return (pixel & 0x00ff00ffU) | (Lanes{pixel & 0xff00ff00U} << 24);
}

QRgb Gather(Lanes lanes) {
    return static_cast<QRgb>(lanes) | static_cast<QRgb>(lanes >> 24);
}

Lanes Blend(Lanes one, Lanes other, unsigned weight) {
    return ((one * (kBlend - weight) + other * weight) >> 8) & kLowBytes;
}

/// The sums of averaging in lanes of 32 bits: blue and red share a number, green has another.
struct Sum {
    std::uint64_t blueAndRed = 0;
    std::uint64_t green = 0;

    /// @param blueAndRed, green numbers of 16 bits, red above blue
    static Sum Of(std::uint32_t blueAndRed, std::uint32_t green) {
        return {(blueAndRed & 0xffffU) | std::uint64_t{blueAndRed >> 16U} << 32U, green};
    }
    static Sum Of(QRgb pixel) { return Of(pixel & 0x00ff00ffU, pixel >> 8U & 0xffU); }

    void Add(const Sum& other, unsigned weight) {
        blueAndRed += other.blueAndRed * weight;
        green += other.green * weight;
    }
    /// All lanes without their lowest bits.
    [[nodiscard]] Sum Without(unsigned bits) const {
        const std::uint64_t lane = 0xffffffffU >> bits;
        return {(blueAndRed >> bits) & (lane << 32U | lane), green >> bits};
    }
    [[nodiscard]] QRgb Pixel(unsigned bits) const {
        const Sum channels = Without(bits);
        return 0xff000000U | static_cast<QRgb>(channels.blueAndRed >> 16U) |
               static_cast<QRgb>(channels.blueAndRed) | static_cast<QRgb>(channels.green << 8U);
    }
};

Sum Blend(const Sum& one, const Sum& other, unsigned weight) {
    Sum blended;
    blended.Add(one, kBlend - weight);
    blended.Add(other, weight);
    return blended.Without(8);
}

/// Pixels that can be added up before a lane of 16 bits is full.
constexpr int kMaxInLanes = 256;

/// The channels of up to kMaxInLanes pixels, added up two pixels at a time.
Sum SumOfFew(const QRgb* pixels, int count) {
    Lanes blueAndRed = 0;
    Lanes green = 0;
    for (; count >= 2; count -= 2, pixels += 2) {
        std::uint64_t two = 0;
        std::memcpy(&two, pixels, sizeof two);
        blueAndRed += two & kLowBytes;
        green += two >> 8U & kLowBytes;
    }
    if (count > 0) {
        blueAndRed += *pixels & 0x00ff00ffU;
        green += *pixels >> 8U & 0x00ff00ffU;
    }
    return Sum::Of(static_cast<std::uint32_t>(blueAndRed + (blueAndRed >> 32U)),
                   static_cast<std::uint32_t>(green + (green >> 32U)) & 0xffffU);
}

Sum SumOfMany(const QRgb* pixels, int count) {
    Sum sum;
    for (; count > 0; count -= kMaxInLanes, pixels += kMaxInLanes)
        sum.Add(SumOfFew(pixels, std::min(count, kMaxInLanes)), 1);
    return sum;
}

/// The weighted sum of the pixels that a tap covers; the weights add up to kFullWeight. Branches depend
/// only on the axis, not on the tap, so nothing mispredicts.
Sum Average(const QRgb* line, const Averaging& tap, const Covered& covered) {
    const QRgb* const first = line + tap.first;
    Sum sum;
    sum.Add(Sum::Of(*first), tap.firstWeight);
    sum.Add(covered.count <= kMaxInLanes ? SumOfFew(first + 1, covered.count)
                                         : SumOfMany(first + 1, covered.count),
            covered.weight);
    sum.Add(Sum::Of(first[tap.secondLast]), tap.secondLastWeight);
    sum.Add(Sum::Of(first[tap.last]), tap.lastWeight);
    return sum;
}

/// Calls `add(pixel, weight)` for every source pixel along an axis that a tap covers.
template<typename Add>
void ForEachCovered(const Averaging& tap, const Covered& covered, const Add& add) {
    add(tap.first, tap.firstWeight);
    for (int pixel = 1; pixel <= covered.count; ++pixel)
        add(tap.first + pixel, covered.weight);
    if (tap.secondLastWeight > 0)
        add(tap.first + tap.secondLast, tap.secondLastWeight);
    if (tap.lastWeight > 0)
        add(tap.first + tap.last, tap.lastWeight);
}

/// Where a part's pixels are written.
struct Destination {
    uchar* firstLine = nullptr;
    std::ptrdiff_t bytesPerLine = 0;
    int left = 0; ///< in pixels

    [[nodiscard]] QRgb* Row(int row) const {
        return reinterpret_cast<QRgb*>(firstLine + row * bytesPerLine) + left;
    }
};

/// Scales row by row for one choice of growing and shrinking axes.
class PartRenderer {
  public:
    PartRenderer(const QImage& source, const QSize& target, const QRect& part, const Destination& destination)
        : rowCount(part.height()),
          destination(destination),
          pixels(reinterpret_cast<const QRgb*>(source.constBits())),
          stride(source.bytesPerLine() / static_cast<int>(sizeof(QRgb))),
          growsAcross(ScalingTaps::Grows(source.width(), target.width())),
          growsDown(ScalingTaps::Grows(source.height(), target.height())),
          coveredAcross(ScalingTaps::CoveredByAll(source.width(), target.width())),
          coveredDown(ScalingTaps::CoveredByAll(source.height(), target.height())) {
        if (growsAcross)
            blendAcross =
                ScalingTaps::BlendingTaps(source.width(), target.width(), part.left(), part.width());
        else
            averageAcross =
                ScalingTaps::AveragingTaps(source.width(), target.width(), part.left(), part.width());
        if (growsDown)
            blendDown =
                ScalingTaps::BlendingTaps(source.height(), target.height(), part.top(), part.height());
        else
            averageDown =
                ScalingTaps::AveragingTaps(source.height(), target.height(), part.top(), part.height());
        if (growsAcross)
            blended.resize(static_cast<std::size_t>(ColumnCount()));
        total.resize(growsAcross ? blended.size() : averageAcross.size());
    }

    /// Writes all rows. It allocates no memory and throws nothing, so that any thread can run it.
    void Render() noexcept {
        for (int row = 0; row < rowCount; ++row)
            RenderRow(static_cast<std::size_t>(row), destination.Row(row));
    }

  private:
    void RenderRow(std::size_t row, QRgb* out) {
        if (growsAcross && growsDown)
            BlendBoth(blendDown[row], out);
        else if (growsAcross)
            AverageDown(averageDown[row], out);
        else if (growsDown)
            AverageAcross(blendDown[row], out);
        else
            AverageBoth(averageDown[row], out);
    }

    [[nodiscard]] const QRgb* Line(int row) const { return pixels + row * stride; }

    /// The source columns that a row of a growing axis needs.
    [[nodiscard]] int FirstColumn() const { return blendAcross.front().first; }
    [[nodiscard]] int ColumnCount() const {
        return blendAcross.back().first + blendAcross.back().next + 1 - FirstColumn();
    }

    void BlendBoth(const Blending& tap, QRgb* out) {
        const int firstColumn = FirstColumn();
        const QRgb* const line = Line(tap.first) + firstColumn;
        const QRgb* const below = Line(tap.first + tap.next) + firstColumn;
        Lanes* const between = blended.data();
        for (std::size_t column = 0; column < blended.size(); ++column)
            between[column] = Blend(Spread(line[column]), Spread(below[column]), tap.weight);
        for (const Blending& x : blendAcross) {
            const Lanes* const at = between + (x.first - firstColumn);
            *out++ = Gather(Blend(at[0], at[x.next], x.weight));
        }
    }

    void AverageDown(const Averaging& tap, QRgb* out) {
        const int firstColumn = FirstColumn();
        std::fill(total.begin(), total.end(), Sum{});
        ForEachCovered(tap, coveredDown, [&](int row, unsigned weight) {
            const QRgb* const line = Line(row) + firstColumn;
            for (std::size_t column = 0; column < total.size(); ++column)
                total[column].Add(Sum::Of(line[column]), weight);
        });
        for (const Blending& x : blendAcross) {
            const Sum* const at = total.data() + (x.first - firstColumn);
            *out++ = Blend(at[0], at[x.next], x.weight).Pixel(14);
        }
    }

    void AverageAcross(const Blending& tap, QRgb* out) const {
        for (const Averaging& x : averageAcross) {
            const Sum one = Average(Line(tap.first), x, coveredAcross);
            const Sum other = Average(Line(tap.first + tap.next), x, coveredAcross);
            *out++ = Blend(one, other, tap.weight).Pixel(14);
        }
    }

    /// Rows are averaged horizontally one after the other, in memory order, and added up.
    void AverageBoth(const Averaging& tap, QRgb* out) {
        std::fill(total.begin(), total.end(), Sum{});
        ForEachCovered(tap, coveredDown, [&](int row, unsigned weight) {
            const QRgb* const line = Line(row);
            for (std::size_t column = 0; column < total.size(); ++column)
                total[column].Add(Average(line, averageAcross[column], coveredAcross).Without(4), weight);
        });
        for (const Sum& sum : total)
            *out++ = sum.Pixel(24);
    }

    int rowCount;
    Destination destination;
    const QRgb* pixels;
    std::ptrdiff_t stride;
    bool growsAcross;
    bool growsDown;
    std::vector<Blending> blendAcross;
    std::vector<Blending> blendDown;
    Covered coveredAcross;
    Covered coveredDown;
    std::vector<Averaging> averageAcross;
    std::vector<Averaging> averageDown;
    std::vector<Lanes> blended;
    std::vector<Sum> total;
};

/// Source pixels that each thread reads at least: for less, starting a thread costs more than it saves.
constexpr double kMinReadPerThread = 500'000;

/// Among how many threads the rows of a part are divided.
int ThreadsFor(const QSize& source, const QSize& target, const QRect& part) {
    const double across = std::max(1.0, static_cast<double>(source.width()) / target.width());
    const double down = std::max(1.0, static_cast<double>(source.height()) / target.height());
    const double useful = part.width() * across * part.height() * down / kMinReadPerThread;
    const auto processors = static_cast<int>(std::thread::hardware_concurrency());
    return static_cast<int>(std::clamp<double>(useful, 1, std::clamp(processors, 1, part.height())));
}

/// Renders the first band on this thread and each other one on a thread of its own, or on this one when the
/// system has no more threads.
void RenderAll(std::vector<PartRenderer>& bands) {
    std::vector<std::jthread> threads;
    threads.reserve(bands.size());
    for (std::size_t band = 1; band < bands.size(); ++band) {
        try {
            threads.emplace_back([&renderer = bands[band]] { renderer.Render(); });
        } catch (const std::system_error&) {
            bands[band].Render();
        }
    }
    bands.front().Render();
}

} // namespace

SmoothScaler::SmoothScaler(const QImage& source, const QSize& target) : source(source), target(target) {
}

void SmoothScaler::Render(const QRect& part, QImage& out, const QPoint& place) const {
    if (part.isEmpty())
        return;
    const int count = ThreadsFor(source.size(), target, part);
    uchar* const pixels = out.bits(); // once, before the threads: the first call may copy the image
    std::vector<PartRenderer> bands;
    for (int band = 0; band < count; ++band) {
        const int first = part.height() * band / count;
        const int end = part.height() * (band + 1) / count;
        const std::ptrdiff_t offset = (place.y() + first) * std::ptrdiff_t{out.bytesPerLine()};
        bands.emplace_back(source, target, QRect(part.left(), part.top() + first, part.width(), end - first),
                           Destination{pixels + offset, out.bytesPerLine(), place.x()});
    }
    RenderAll(bands);
}
