#include "FakeClock.h"
#include "log/Log.h"

#include <gmock/gmock.h>

namespace {

class NowTimeTest : public ::testing::Test {
  protected:
    NowTimeTest() { fakeClock::Begin(); }
    ~NowTimeTest() override { fakeClock::fails = false; }

    static std::string after(std::uint32_t milliseconds) {
        fakeClock::ticks = fakeClock::kStart + milliseconds;
        return NowTime();
    }
};

TEST_F(NowTimeTest, countStartsWithTheFirstGoodStamp) {
    EXPECT_EQ(after(0), "14:03:07.000"); // the failed stamp, 700 ms earlier, did not start the count
}

TEST_F(NowTimeTest, fractionIsTheTimeSinceTheFirstStamp) {
    EXPECT_EQ(after(7), "14:03:07.007");
    EXPECT_EQ(after(42), "14:03:07.042");
    EXPECT_EQ(after(999), "14:03:07.999");
    EXPECT_EQ(after(1000), "14:03:07.000");
    EXPECT_EQ(after(1500), "14:03:07.500");
}

TEST_F(NowTimeTest, countContinuesWhenTheTicksWrapAround) {
    EXPECT_EQ(after(0x100), "14:03:07.256"); // the ticks are 0
    EXPECT_EQ(after(0x123), "14:03:07.291");
}

TEST_F(NowTimeTest, fractionBecomesNegativeAfterHalfTheRange) {
    EXPECT_EQ(after(2147483647U), "14:03:07.647");
    EXPECT_EQ(after(2147483648U), "14:03:07.-648");
    EXPECT_EQ(after(4294967284U), "14:03:07.-12");
    EXPECT_EQ(after(4294967291U), "14:03:07.-05"); // padded to three characters, sign included
    EXPECT_EQ(after(4294966296U), "14:03:07.000");
}

TEST_F(NowTimeTest, reportsThatTheSystemHasNoTime) {
    fakeClock::fails = true;
    EXPECT_EQ(NowTime(), "Error in NowTime()");
}

} // namespace
