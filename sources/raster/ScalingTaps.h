#pragma once

#include <cstdint>
#include <vector>

/// Where the pixels of a scaled image come from along one axis, in Qt's fixed-point arithmetic.
namespace ScalingTaps {

/// An axis that does not shrink is blended, one that shrinks is averaged.
[[nodiscard]] inline bool Grows(int source, int target) {
    return target >= source;
}

/// Weights of a blending tap add up to this.
constexpr unsigned kBlend = 256;
/// Weights of an averaging tap add up to this.
constexpr unsigned kFullWeight = 1U << 14U;

/// One target pixel of a blended axis: the two nearest source pixels.
struct Blending {
    int first = 0;
    int next = 0;        ///< steps from the first to the second, 0 at the last one
    unsigned weight = 0; ///< of the second
};

/// One target pixel of an averaged axis: a first source pixel, then fully covered ones, as many for every tap
/// of the axis, then up to two more. If one of the last two has no weight it refers to the first pixel, so
/// reads stay in bounds.
struct Averaging {
    int first = 0;
    unsigned firstWeight = 0;
    int secondLast = 0; ///< steps from the first
    unsigned secondLastWeight = 0;
    int last = 0; ///< steps from the first
    unsigned lastWeight = 0;
};

/// What all taps of an averaged axis have in common.
struct Covered {
    int count = 0; ///< fully covered source pixels after the first
    unsigned weight = 0;
};

[[nodiscard]] Covered CoveredByAll(int source, int target);

/// The taps of `count` target pixels from `first` on.
[[nodiscard]] std::vector<Blending> BlendingTaps(int source, int target, int first, int count);
[[nodiscard]] std::vector<Averaging> AveragingTaps(int source, int target, int first, int count);

} // namespace ScalingTaps
