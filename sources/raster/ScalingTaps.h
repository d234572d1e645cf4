#pragma once

#include <cstdint>
#include <vector>

/// Where the pixels of a scaled image come from along one axis, in the toolkit's own fixed-point arithmetic.
namespace ScalingTaps {

/// An axis that does not shrink is blended, one that shrinks is averaged.
[[nodiscard]] inline bool Grows(int source, int target) {
    return target >= source;
}

/// Weights of a blending tap add up to this.
constexpr unsigned kBlend = 256;
/// Weights of an averaging tap add up to this.
constexpr unsigned kWhole = 1U << 14U;

/// One target pixel of a blended axis: the two nearest source pixels.
struct Blending {
    int first = 0;
    int next = 0;        ///< steps from the first to the second, 0 at the last one
    unsigned weight = 0; ///< of the second
};

/// One target pixel of an averaged axis: a first source pixel, some wholly covered ones behind it, as many
/// for every tap of the axis, and up to two more behind those. Of the last two, one without a weight is not
/// the pixel behind but the first again, so that it may be looked at all the same.
struct Averaging {
    int first = 0;
    unsigned firstWeight = 0;
    int secondLast = 0; ///< steps from the first
    unsigned secondLastWeight = 0;
    int last = 0; ///< steps from the first
    unsigned lastWeight = 0;
};

/// What is the same for all taps of an averaged axis.
struct Covered {
    int count = 0; ///< source pixels wholly covered, behind the first
    unsigned weight = 0;
};

[[nodiscard]] Covered CoveredByAll(int source, int target);

/// The taps of `count` target pixels from `first` on.
[[nodiscard]] std::vector<Blending> BlendingTaps(int source, int target, int first, int count);
[[nodiscard]] std::vector<Averaging> AveragingTaps(int source, int target, int first, int count);

} // namespace ScalingTaps
