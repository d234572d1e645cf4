#include "basalt/bIpAddress.h"

#include <gtest/gtest.h>

namespace {

bIpAddress Address(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    return bIpAddress{{a, b, c, d}};
}

TEST(IpAddress, readsDottedNumbers) {
    bIpAddress address;
    EXPECT_EQ(bIpAddress_Parse(&address, "127.0.0.1"), bOK);
    EXPECT_EQ(address, Address(127, 0, 0, 1));
    EXPECT_EQ(bIpAddress_Parse(&address, "255.254.10.0"), bOK);
    EXPECT_EQ(address, Address(255, 254, 10, 0));
}

TEST(IpAddress, refusesEverythingElseAndKeepsTheAddress) {
    const char* const texts[] = {"",          "1",          "1.2.3",      "1.2.3.",    "1.2.3.4.",
                                 ".1.2.3.4",  "1.2.3.4 ",   " 1.2.3.4",   "1.2.3.256", "1.2.3.-1",
                                 "+1.2.3.4",  "01.2.3.4",   "1.2.3.00",   "1..2.3",    "a.b.c.d",
                                 "1.2.3.4.5", "1.2.3.1000", "0x7f.0.0.1", "::1",       "1,2,3,4",
                                 "localhost", "1.2.3.4\n",  "999.1.1.1",  "1.2.3.4/24"};
    for (const char* const text : texts) {
        bIpAddress address = Address(9, 9, 9, 9);
        EXPECT_EQ(bIpAddress_Parse(&address, text), bERROR_PARAMETER) << text;
        EXPECT_EQ(address, Address(9, 9, 9, 9)) << text;
    }
    bIpAddress address;
    EXPECT_EQ(bIpAddress_Parse(&address, nullptr), bERROR_PARAMETER);
    EXPECT_EQ(bIpAddress_Parse(nullptr, "1.2.3.4"), bERROR_PARAMETER);
}

TEST(IpAddress, isWrittenDottedIntoSixteenCharacters) {
    char text[bIpAddress_TEXT_SIZE];
    EXPECT_EQ(bIpAddress_Format(Address(255, 255, 255, 255), text, sizeof text), bOK);
    EXPECT_STREQ(text, "255.255.255.255");
    EXPECT_EQ(bIpAddress_Format(Address(10, 0, 200, 7), text, sizeof text), bOK);
    EXPECT_STREQ(text, "10.0.200.7");
}

TEST(IpAddress, isNotWrittenIntoATooSmallBuffer) {
    char text[] = "untouched.";
    EXPECT_EQ(bIpAddress_Format(Address(1, 2, 3, 4), text, 8), bOK);
    EXPECT_STREQ(text, "1.2.3.4");
    EXPECT_EQ(bIpAddress_Format(Address(5, 6, 7, 8), text, 7), bERROR_PARAMETER);
    EXPECT_STREQ(text, "1.2.3.4");
    EXPECT_EQ(bIpAddress_Format(Address(5, 6, 7, 8), nullptr, 16), bERROR_PARAMETER);
}

} // namespace
