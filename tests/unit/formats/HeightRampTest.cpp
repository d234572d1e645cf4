#include "document/formats/HeightColours.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Colour = HeightRamp::Colour;

/// The ramp's table of bands, written independently.
Colour ExpectedColour(double v) {
    const auto byte = [](double value) { return static_cast<std::uint8_t>(value); };
    if (v < 0)
        return {0, 0, 0};
    if (v <= 255)
        return {0, 0, byte(v)};
    if (v <= 511)
        return {0, byte(v - 256), 255};
    if (v <= 767)
        return {0, 255, byte(255 - (v - 512))};
    if (v <= 1023)
        return {byte(v - 768), 255, 0};
    if (v <= 1279)
        return {255, byte(255 - (v - 1024)), 0};
    if (v <= 1535)
        return {255, 0, byte(v - 1280)};
    if (v <= 1791)
        return {255, byte(v - 1536), 255};
    return {255, 255, 255};
}

TEST(HeightRamp, givesEveryStepItsBandsColour) {
    const HeightRamp ramp(0.0, 1792.0);
    for (int step = -300; step <= 2100; ++step)
        EXPECT_EQ(ramp.ColourOf(step), ExpectedColour(step)) << step;
}

TEST(HeightRamp, paintsTheLowestHeightBlackAndTheHighestWhite) {
    const HeightRamp ramp(-2.5, 7.25);
    EXPECT_EQ(ramp.ColourOf(-2.5), (Colour{0, 0, 0}));
    EXPECT_EQ(ramp.ColourOf(7.25), (Colour{255, 255, 255}));
}

TEST(HeightRamp, paintsHeightsJustAboveTheLowestVeryDarkBlue) {
    EXPECT_EQ(HeightRamp(0.0, 1.0).ColourOf(1.0 / 1792), (Colour{0, 0, 1}));
}

TEST(HeightRamp, roundsHalvesUp) {
    const HeightRamp ramp(0.0, 1792.0);
    EXPECT_EQ(ramp.ColourOf(0.49), (Colour{0, 0, 0}));
    EXPECT_EQ(ramp.ColourOf(0.5), (Colour{0, 0, 1}));
    EXPECT_EQ(ramp.ColourOf(1.5), (Colour{0, 0, 2}));
    EXPECT_EQ(ramp.ColourOf(1791.49), (Colour{255, 255, 255}));
    EXPECT_EQ(ramp.ColourOf(1790.49), (Colour{255, 254, 255}));
    EXPECT_EQ(ramp.ColourOf(-0.5), (Colour{0, 0, 0}));
}

TEST(HeightRamp, followsTheFormulaForFractions) {
    const double low = -3.7;
    const double high = 11.9;
    const HeightRamp ramp(low, high);
    for (int i = -1000; i < 20'000; ++i) {
        const double height = low + i * 0.00098765;
        EXPECT_EQ(ramp.ColourOf(height),
                  ExpectedColour(std::floor((height - low) * 1792 / (high - low) + 0.5)))
            << height;
    }
}

TEST(HeightRamp, acceptsAnyValue) {
    const double infinity = std::numeric_limits<double>::infinity();
    const HeightRamp ramp(0.0, 1.0);
    EXPECT_EQ(ramp.ColourOf(infinity), (Colour{255, 255, 255}));
    EXPECT_EQ(ramp.ColourOf(-infinity), (Colour{0, 0, 0}));
    EXPECT_EQ(ramp.ColourOf(std::nan("")), (Colour{0, 0, 0}));
    EXPECT_EQ(HeightRamp::ColourOfStep(1e300), (Colour{255, 255, 255}));
    EXPECT_EQ(HeightRamp::ColourOfStep(-1e300), (Colour{0, 0, 0}));
}

TEST(HeightRamp, isValidForARangeAboveZeroOnly) {
    EXPECT_TRUE(HeightRamp(1.0, 1.5).IsValid());
    EXPECT_FALSE(HeightRamp(1.0, 1.0).IsValid());
    EXPECT_FALSE(HeightRamp(1.0, 0.5).IsValid());
    EXPECT_FALSE(HeightRamp(std::nan(""), 0.5).IsValid());
}

} // namespace
