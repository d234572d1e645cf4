#include "raster/ScalingTaps.h"

#include <algorithm>

namespace ScalingTaps {

namespace {

/// Positions have 16 fractional bits.
std::int64_t Step(int source, int target) {
    return (std::int64_t{source} << 16) / target;
}

Blending BlendingTap(int source, int target, int pixel) {
    const std::int64_t half = 0x8000;
    const std::int64_t position = half * source / target - half + pixel * Step(source, target);
    const auto first = static_cast<int>(position >> 16);
    if (first < 0)
        return {0, 0, 0};
    if (first >= source - 1)
        return {source - 1, 0, 0};
    return {first, 1, static_cast<unsigned>((position >> 8) & 0xff)};
}

Averaging AveragingTap(int source, int target, int pixel, const Covered& covered) {
    const std::int64_t position = pixel * Step(source, target);
    const auto part = static_cast<std::uint64_t>(0x10000 - (position & 0xffff));
    Averaging tap;
    tap.first = static_cast<int>(position >> 16);
    tap.firstWeight = static_cast<unsigned>((part * covered.weight) >> 16);
    const unsigned left =
        kFullWeight - tap.firstWeight - static_cast<unsigned>(covered.count) * covered.weight;
    tap.secondLastWeight = std::min(left, covered.weight);
    tap.secondLast = tap.secondLastWeight > 0 ? covered.count + 1 : 0;
    tap.lastWeight = left - tap.secondLastWeight;
    tap.last = tap.lastWeight > 0 ? covered.count + 2 : 0;
    return tap;
}

} // namespace

Covered CoveredByAll(int source, int target) {
    const auto weight = static_cast<unsigned>(((std::int64_t{target} << 14) + source - 1) / source);
    // The first pixel weighs no more than a fully covered one, and at least a little weight is left for the
    // last.
    const unsigned count = weight < kFullWeight ? (kFullWeight - weight - 1) / weight : 0;
    return {static_cast<int>(count), weight};
}

std::vector<Blending> BlendingTaps(int source, int target, int first, int count) {
    std::vector<Blending> taps;
    taps.reserve(static_cast<std::size_t>(count));
    for (int pixel = first; pixel < first + count; ++pixel)
        taps.push_back(BlendingTap(source, target, pixel));
    return taps;
}

std::vector<Averaging> AveragingTaps(int source, int target, int first, int count) {
    const Covered covered = CoveredByAll(source, target);
    std::vector<Averaging> taps;
    taps.reserve(static_cast<std::size_t>(count));
    for (int pixel = first; pixel < first + count; ++pixel)
        taps.push_back(AveragingTap(source, target, pixel, covered));
    return taps;
}

} // namespace ScalingTaps
