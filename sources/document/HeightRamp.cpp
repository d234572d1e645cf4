#include "HeightRamp.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

HeightRamp::Colour ComputedColour(int step) {
    const auto rising = static_cast<std::uint8_t>(step % 256);
    const auto falling = static_cast<std::uint8_t>(255 - rising);
    switch (step / 256) {
    case 0:
        return {0, 0, rising};
    case 1:
        return {0, rising, 255};
    case 2:
        return {0, 255, falling};
    case 3:
        return {rising, 255, 0};
    case 4:
        return {255, falling, 0};
    case 5:
        return {255, 0, rising};
    case 6:
        return {255, rising, 255};
    default:
        return {255, 255, 255};
    }
}

using Table = std::array<HeightRamp::Colour, HeightRamp::kLastStep + 1>;

Table ComputedTable() {
    Table table{};
    for (int step = 0; step <= HeightRamp::kLastStep; ++step)
        table[static_cast<std::size_t>(step)] = ComputedColour(step);
    return table;
}

} // namespace

HeightRamp::HeightRamp(double lowHeight, double highHeight) : low(lowHeight), range(highHeight - lowHeight) {
}

const HeightRamp::Colour& HeightRamp::ColourOf(double height) const {
    return ColourOfStep(std::floor((height - low) * kLastStep / range + 0.5));
}

const HeightRamp::Colour& HeightRamp::ColourOfStep(double step) {
    static const Table table = ComputedTable();
    return table[static_cast<std::size_t>(std::clamp(step, 0.0, double{kLastStep}))];
}
