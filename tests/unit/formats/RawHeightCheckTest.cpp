#include "document/formats/RawHeightCheck.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

/// The failure of a map of one row.
std::string FailureOf(const std::vector<double>& heights, double zOffset, double zResolution) {
    RawHeightCheck check(zOffset, zResolution);
    std::int32_t column = 0;
    for (const double height : heights)
        check.RawValueOf({0, column++, height});
    return check.Failure();
}

TEST(RawHeightCheck, acceptsHeightsWithDistinctRawValues) {
    EXPECT_THAT(FailureOf({32767, -32767, 0}, 0, 1), IsEmpty());
    EXPECT_THAT(FailureOf({32767.999, -32767.999}, 0, 1), IsEmpty()); // truncated toward zero
    EXPECT_THAT(FailureOf({-5, 59.999}, -5, 0.002), IsEmpty());
    EXPECT_THAT(FailureOf({3, 5}, 1, -2), IsEmpty());
}

TEST(RawHeightCheck, namesTheFirstCellBeyondSixteenBits) {
    EXPECT_EQ(FailureOf({1, 32768, 40000}, 0, 1),
              "Cannot store row=0 column=1 height=32768: its raw value 32768 is beyond 16 bits");
    // This value marks a cell without a measurement.
    EXPECT_EQ(FailureOf({1, 2, -32768}, 0, 1),
              "Cannot store row=0 column=2 height=-32768: its raw value -32768 is beyond 16 bits");
    EXPECT_THAT(FailureOf({1e308}, -1e308, 0.5), HasSubstr("raw value inf is beyond 16 bits"));
}

TEST(RawHeightCheck, namesTheFirstMeasuredCellWhenNoneFitsARawValue) {
    EXPECT_EQ(FailureOf({std::nan(""), 7}, 0, 0),
              "Cannot store row=0 column=1 height=7: ZResolution=0 and ZOffset=0 give it no raw value");
    EXPECT_THAT(FailureOf({7}, 0, -0.0), HasSubstr("no raw value"));
    EXPECT_THAT(FailureOf({7}, 0, kInfinite), HasSubstr("ZResolution=inf and"));
    EXPECT_THAT(FailureOf({7}, 0, std::nan("")), HasSubstr("ZResolution=nan and"));
    EXPECT_THAT(FailureOf({7}, kInfinite, 1), HasSubstr("ZOffset=inf give it no raw value"));
    EXPECT_THAT(FailureOf({7}, std::nan(""), 1), HasSubstr("ZOffset=nan give it no raw value"));
}

TEST(RawHeightCheck, namesTheFirstCellWhenAllHeightsBecomeEqual) {
    EXPECT_EQ(FailureOf({5, 5, 5.1, 9}, 0, 10),
              "Cannot store row=0 column=2 height=5.1: with ZResolution=10 all heights become the raw "
              "value 0");
    EXPECT_THAT(FailureOf({5, 9}, 5, -10), HasSubstr("column=1"));
}

TEST(RawHeightCheck, acceptsHeightsOfWhichSomeBecomeEqual) {
    EXPECT_THAT(FailureOf({5, 9, 10}, 0, 10), IsEmpty());
    EXPECT_THAT(FailureOf({10, 5, 9}, 0, 10), IsEmpty());
}

/// The map was flat before, too.
TEST(RawHeightCheck, acceptsASingleHeight) {
    EXPECT_THAT(FailureOf({5, 5, 5}, 0, 10), IsEmpty());
    EXPECT_THAT(FailureOf({0.0, -0.0}, 0, 10), IsEmpty());
    EXPECT_THAT(FailureOf({}, 0, 10), IsEmpty());
}

TEST(RawHeightCheck, ignoresNonFiniteHeights) {
    EXPECT_THAT(FailureOf({kInfinite, -kInfinite, std::nan("")}, 0, 1), IsEmpty());
    EXPECT_THAT(FailureOf({kInfinite, 5, std::nan("")}, 0, 10), IsEmpty());
}

} // namespace
