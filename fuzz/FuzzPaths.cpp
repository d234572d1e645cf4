#include "FuzzPaths.h"

#include <bit>
#include <cstdint>

namespace {

/// Usual coordinates or arbitrary bits.
double TakeDouble(InputBytes& input) {
    constexpr double kSteps = 256;
    if (input.TakeBool())
        return input.Take<std::uint8_t>() / kSteps;
    return std::bit_cast<double>(input.Take<std::uint64_t>());
}

QPointF TakePoint(InputBytes& input) {
    const double x = TakeDouble(input);
    return {x, TakeDouble(input)};
}

RulerMarks TakeMarks(InputBytes& input) {
    constexpr int kMaxTicks = 3;
    RulerMarks marks;
    for (int ticks = input.TakeInRange(0, kMaxTicks); ticks > 0; --ticks) {
        marks.tickStarts.push_back(TakePoint(input));
        marks.tickEnds.push_back(TakePoint(input));
    }
    return marks;
}

TrackPath TakePath(InputBytes& input) {
    constexpr int kMaxPoints = 6;
    TrackPath path;
    for (int points = input.TakeInRange(1, kMaxPoints); points > 0; --points) {
        path.points.push_back(TakePoint(input));
        for (std::vector<int>* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
            list->push_back(input.Take<std::int32_t>());
    }
    if (input.TakeBool()) {
        for (std::size_t segment = 0; segment + 1 < path.points.size(); ++segment)
            path.rulerMarks.push_back(TakeMarks(input));
    }
    return path;
}

} // namespace

std::vector<TrackPath> TakePaths(InputBytes& input) {
    constexpr int kMaxPaths = 4;
    std::vector<TrackPath> paths;
    for (int count = input.TakeInRange(0, kMaxPaths); count > 0; --count)
        paths.push_back(TakePath(input));
    return paths;
}

WorldTransform TakeTransform(InputBytes& input) {
    WorldTransform transform{};
    for (double* factor : {&transform.widthScale, &transform.xOffset, &transform.yOffset, &transform.xScale,
                           &transform.yScale})
        *factor = TakeDouble(input);
    return transform;
}
