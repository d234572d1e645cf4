#include "FuzzPaths.h"

#include <bit>
#include <cstdint>

namespace {

/// Usual coordinates, or any bits at all.
double TakeDouble(FuzzedDataProvider& input) {
    constexpr double kSteps = 256;
    if (input.ConsumeBool())
        return input.ConsumeIntegral<std::uint8_t>() / kSteps;
    return std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
}

QPointF TakePoint(FuzzedDataProvider& input) {
    const double x = TakeDouble(input);
    return {x, TakeDouble(input)};
}

RulerMarks TakeMarks(FuzzedDataProvider& input) {
    constexpr int kMostTicks = 3;
    RulerMarks marks;
    for (int ticks = input.ConsumeIntegralInRange(0, kMostTicks); ticks > 0; --ticks) {
        marks.tickStarts.push_back(TakePoint(input));
        marks.tickEnds.push_back(TakePoint(input));
    }
    return marks;
}

TrackPath TakePath(FuzzedDataProvider& input) {
    constexpr int kMostPoints = 6;
    TrackPath path;
    for (int points = input.ConsumeIntegralInRange(1, kMostPoints); points > 0; --points) {
        path.points.push_back(TakePoint(input));
        for (std::vector<int>* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
            list->push_back(input.ConsumeIntegral<std::int32_t>());
    }
    if (input.ConsumeBool()) {
        for (std::size_t segment = 0; segment + 1 < path.points.size(); ++segment)
            path.rulerMarks.push_back(TakeMarks(input));
    }
    return path;
}

} // namespace

std::vector<TrackPath> TakePaths(FuzzedDataProvider& input) {
    constexpr int kMostPaths = 4;
    std::vector<TrackPath> paths;
    for (int count = input.ConsumeIntegralInRange(0, kMostPaths); count > 0; --count)
        paths.push_back(TakePath(input));
    return paths;
}

WorldTransform TakeTransform(FuzzedDataProvider& input) {
    WorldTransform transform{};
    for (double* factor : {&transform.widthScale, &transform.xOffset, &transform.yOffset, &transform.xScale,
                           &transform.yScale})
        *factor = TakeDouble(input);
    return transform;
}
