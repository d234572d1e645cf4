#include "SmoothScaler.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

/// Weights of an averaging axis add up to this.
constexpr std::uint32_t kWhole = 1U << 14;
/// Weights of a blending axis add up to this.
constexpr std::uint32_t kBlend = 256;

/// Where one target pixel comes from along one axis.
struct Tap {
    int first = 0;                ///< the first source pixel
    std::uint32_t weight = 0;     ///< blending: of the second pixel; averaging: of the first
    std::uint32_t inner = kWhole; ///< averaging: of each pixel wholly covered
    int next = 0;                 ///< blending: steps to the second pixel, 0 at the last one
};

bool Grows(int source, int target) {
    return target >= source;
}

/// Positions are fixed-point numbers with 16 bits behind the point.
Tap BlendingTap(int source, int target, int pixel) {
    const std::int64_t half = 0x8000;
    const std::int64_t step = (std::int64_t{source} << 16) / target;
    const std::int64_t position = half * source / target - half + pixel * step;
    const auto first = static_cast<int>(position >> 16);
    if (first < 0)
        return {0, 0, kWhole, 0};
    if (first >= source - 1)
        return {source - 1, 0, kWhole, 0};
    return {first, static_cast<std::uint32_t>((position >> 8) & 0xff), kWhole, 1};
}

Tap AveragingTap(int source, int target, int pixel) {
    const std::int64_t step = (std::int64_t{source} << 16) / target;
    const std::int64_t position = pixel * step;
    const auto inner = static_cast<std::uint32_t>(((std::int64_t{target} << 14) + source - 1) / source);
    const auto part = static_cast<std::uint32_t>(0x10000 - (position & 0xffff));
    return {static_cast<int>(position >> 16), static_cast<std::uint32_t>((std::uint64_t{part} * inner) >> 16),
            inner, 0};
}

std::vector<Tap> TapsOf(int source, int target, int first, int count) {
    std::vector<Tap> taps;
    taps.reserve(static_cast<std::size_t>(count));
    for (int pixel = first; pixel < first + count; ++pixel)
        taps.push_back(Grows(source, target) ? BlendingTap(source, target, pixel)
                                             : AveragingTap(source, target, pixel));
    return taps;
}

/// The channels of a pixel in lanes of 16 bits, so that one operation serves all four.
using Lanes = std::uint64_t;
constexpr Lanes kLaneMask = 0x00ff00ff00ff00ffULL;

Lanes Spread(QRgb pixel) {
    return (pixel & 0x00ff00ffU) | (Lanes{pixel & 0xff00ff00U} << 24);
}

QRgb Gather(Lanes lanes) {
    return static_cast<QRgb>(lanes) | static_cast<QRgb>(lanes >> 24);
}

Lanes Blend(Lanes one, Lanes other, std::uint32_t weight) {
    return ((one * (kBlend - weight) + other * weight) >> 8) & kLaneMask;
}

/// Sums of channels times weights.
struct Sum {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;

    void Add(QRgb pixel, std::uint32_t weight) {
        red += (pixel >> 16 & 0xff) * weight;
        green += (pixel >> 8 & 0xff) * weight;
        blue += (pixel & 0xff) * weight;
    }
    /// Adds an average of one direction as a term of the other.
    void Add(const Sum& average, std::uint32_t weight) {
        red += (average.red >> 4) * weight;
        green += (average.green >> 4) * weight;
        blue += (average.blue >> 4) * weight;
    }
    void BlendWith(const Sum& other, std::uint32_t weight) {
        red = (red * (kBlend - weight) + other.red * weight) >> 8;
        green = (green * (kBlend - weight) + other.green * weight) >> 8;
        blue = (blue * (kBlend - weight) + other.blue * weight) >> 8;
    }
    [[nodiscard]] QRgb Pixel(int bits) const {
        return 0xff000000U | (red >> bits) << 16 | (green >> bits) << 8 | blue >> bits;
    }
};

/// Calls `add(step, weight)` for every source pixel that an averaging tap covers.
template<typename Add>
void ForEachCovered(const Tap& tap, const Add& add) {
    int step = 0;
    add(step, tap.weight);
    std::uint32_t left = kWhole - tap.weight;
    for (; left > tap.inner; left -= tap.inner)
        add(++step, tap.inner);
    if (left > 0)
        add(++step, left);
}

Sum Average(const QRgb* pixels, const Tap& tap, std::ptrdiff_t stride) {
    Sum sum;
    ForEachCovered(tap, [&](int step, std::uint32_t weight) { sum.Add(pixels[step * stride], weight); });
    return sum;
}

/// Scales row by row for one choice of growing and shrinking axes.
class PartRenderer {
  public:
    PartRenderer(const QImage& source, const QSize& target, const QRect& part)
        : pixels(reinterpret_cast<const QRgb*>(source.constBits())),
          stride(source.bytesPerLine() / static_cast<int>(sizeof(QRgb))),
          growsAcross(Grows(source.width(), target.width())),
          growsDown(Grows(source.height(), target.height())),
          across(TapsOf(source.width(), target.width(), part.left(), part.width())),
          down(TapsOf(source.height(), target.height(), part.top(), part.height())) {}

    void RenderRow(std::size_t row, QRgb* out) {
        const Tap& tap = down[row];
        const QRgb* line = pixels + tap.first * stride;
        if (growsAcross && growsDown)
            BlendBoth(line, tap, out);
        else if (growsAcross)
            AverageDown(line, tap, out);
        else if (growsDown)
            AverageAcross(line, tap, out);
        else
            AverageBoth(line, tap, out);
    }

  private:
    void BlendBoth(const QRgb* line, const Tap& tap, QRgb* out) {
        const int first = across.front().first;
        const int last = across.back().first + across.back().next;
        blended.resize(static_cast<std::size_t>(last - first) + 1);
        const QRgb* below = line + tap.next * stride;
        for (int column = first; column <= last; ++column)
            blended[static_cast<std::size_t>(column - first)] =
                Blend(Spread(line[column]), Spread(below[column]), tap.weight);
        for (const Tap& x : across) {
            const Lanes* at = blended.data() + (x.first - first);
            *out++ = Gather(Blend(at[0], at[x.next], x.weight));
        }
    }

    void AverageDown(const QRgb* line, const Tap& tap, QRgb* out) const {
        for (const Tap& x : across) {
            Sum sum = Average(line + x.first, tap, stride);
            if (x.weight > 0)
                sum.BlendWith(Average(line + x.first + x.next, tap, stride), x.weight);
            *out++ = sum.Pixel(14);
        }
    }

    void AverageAcross(const QRgb* line, const Tap& tap, QRgb* out) const {
        for (const Tap& x : across) {
            Sum sum = Average(line + x.first, x, 1);
            if (tap.weight > 0)
                sum.BlendWith(Average(line + tap.next * stride + x.first, x, 1), tap.weight);
            *out++ = sum.Pixel(14);
        }
    }

    void AverageBoth(const QRgb* line, const Tap& tap, QRgb* out) const {
        for (const Tap& x : across) {
            Sum sum;
            ForEachCovered(tap, [&](int step, std::uint32_t weight) {
                sum.Add(Average(line + step * stride + x.first, x, 1), weight);
            });
            *out++ = sum.Pixel(24);
        }
    }

    const QRgb* pixels;
    std::ptrdiff_t stride;
    bool growsAcross;
    bool growsDown;
    std::vector<Tap> across;
    std::vector<Tap> down;
    std::vector<Lanes> blended;
};

} // namespace

SmoothScaler::SmoothScaler(const QImage& source, const QSize& target) : source(source), target(target) {
}

void SmoothScaler::Render(const QRect& part, QImage& out, const QPoint& place) const {
    if (part.isEmpty())
        return;
    PartRenderer renderer(source, target, part);
    for (int row = 0; row < part.height(); ++row)
        renderer.RenderRow(static_cast<std::size_t>(row),
                           reinterpret_cast<QRgb*>(out.scanLine(place.y() + row)) + place.x());
}
