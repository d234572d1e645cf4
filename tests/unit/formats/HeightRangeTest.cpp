#include "document/formats/HeightRange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(HeightRange, keepsItsInitialValuesUntilAHeightExtendsThem) {
    HeightRange range(2.0, 5.0);
    range.Add(PackedDecimal{30, 1});
    range.Add(4.25);
    EXPECT_EQ(range.Lowest(), 2.0);
    EXPECT_EQ(range.Highest(), 5.0);
    range.Add(PackedDecimal{-7, 1});
    range.Add(1e9);
    EXPECT_EQ(range.Lowest(), -0.7);
    EXPECT_EQ(range.Highest(), 1e9);
}

TEST(HeightRange, comparesHeightsAndNotDigits) {
    HeightRange range(1e6, -1e6);
    range.Add(PackedDecimal{9, 0});
    range.Add(PackedDecimal{1234, 3});
    range.Add(PackedDecimal{85, 1});
    EXPECT_EQ(range.Lowest(), 1.234);
    EXPECT_EQ(range.Highest(), 9.0);
}

TEST(HeightRange, skipsUnmeasuredCells) {
    HeightRange range(1.0, 2.0);
    for (const double height : {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()})
        range.Add(height);
    EXPECT_EQ(range.Lowest(), 1.0);
    EXPECT_EQ(range.Highest(), 2.0);
}

TEST(HeightRange, keepsTheSignOfTheFirstZero) {
    HeightRange positive(1.0, 1.0);
    positive.Add(PackedDecimal{0, 2});
    positive.Add(-0.0);
    EXPECT_FALSE(std::signbit(positive.Lowest()));
    HeightRange negative(1.0, 1.0);
    negative.Add(-0.0);
    negative.Add(PackedDecimal{0, 2});
    EXPECT_TRUE(std::signbit(negative.Lowest()));
}

TEST(HeightRange, equalsPlainComparisonsForHeightsOfEveryForm) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        double lowest = 3.0;
        double highest = 3.0;
        HeightRange range(lowest, highest);
        for (int count = 0; count < 20; ++count) {
            const PackedDecimal packed{static_cast<std::int32_t>(random() % 2'000'000) - 1'000'000,
                                       static_cast<std::uint32_t>(random() % PackedDecimal::kFractions)};
            const bool isPacked = random() % 4 != 0;
            const double height = isPacked ? packed.Value() : packed.Value() * 1.000001;
            if (isPacked)
                range.Add(packed);
            else
                range.Add(height);
            lowest = std::min(lowest, height);
            highest = std::max(highest, height);
        }
        ASSERT_EQ(range.Lowest(), lowest) << round;
        ASSERT_EQ(range.Highest(), highest) << round;
    }
}

} // namespace
