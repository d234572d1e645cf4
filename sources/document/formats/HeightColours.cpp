#include "document/formats/HeightColours.h"

#include <cmath>

const HeightRamp::Colour& HeightColours::ColourOf(double height) const {
    return std::isfinite(height) ? ramp.ColourOf(height) : HeightRamp::kBlack;
}

/// The first height settles which ones the table is for.
const HeightRamp::Colour& HeightColours::ColourOutside(PackedDecimal height) {
    if (fraction == kNotYetSeen)
        fraction = height.fraction;
    return ramp.ColourOf(height.Value());
}
