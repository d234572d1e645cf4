#include "document/formats/HeightColours.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using Colour = HeightRamp::Colour;

TEST(HeightColours, equalTheRampsOnTheFirstAndLaterCalls) {
    const HeightRamp ramp(-20.0, 33.0);
    HeightColours colours(ramp);
    for (int time = 0; time < 2; ++time)
        for (std::int32_t digits = -2500; digits <= 4000; ++digits)
            ASSERT_EQ(colours.ColourOf(PackedDecimal{digits, 2}), ramp.ColourOf(digits / 100.0)) << digits;
}

TEST(HeightColours, distinguishEqualDigitsOfDifferentHeights) {
    const HeightRamp ramp(0.0, 100.0);
    HeightColours colours(ramp);
    for (const std::uint32_t fraction : {2U, 1U, 0U, 2U, 3U})
        EXPECT_EQ(colours.ColourOf(PackedDecimal{75, fraction}),
                  ramp.ColourOf(PackedDecimal{75, fraction}.Value()))
            << fraction;
    EXPECT_NE(colours.ColourOf(PackedDecimal{75, 2}), colours.ColourOf(PackedDecimal{75, 1}));
}

TEST(HeightColours, coverHeightsOutsideTheTable) {
    const HeightRamp ramp(-1'000'000.0, 1'000'000.0);
    HeightColours colours(ramp);
    for (const std::int32_t digits :
         {0, 32'767, 32'768, 65'536, 9'999'999, -32'768, -32'769, -65'536, -999'999})
        EXPECT_EQ(colours.ColourOf(PackedDecimal{digits, 0}), ramp.ColourOf(digits)) << digits;
}

TEST(HeightColours, paintUnmeasuredCellsBlack) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const HeightColours colours(HeightRamp(-2.0, -1.0)); // where 0 is white
    EXPECT_EQ(colours.ColourOf(0.0), (Colour{255, 255, 255}));
    for (const double height : {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(colours.ColourOf(height), (Colour{0, 0, 0})) << height;
}

TEST(HeightColours, areInvalidForAnInvalidRamp) {
    EXPECT_FALSE(HeightColours(HeightRamp(1.0, 1.0)).IsValid());
    EXPECT_TRUE(HeightColours(HeightRamp(1.0, 1.5)).IsValid());
}

} // namespace
