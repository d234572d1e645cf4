#include "document/formats/HeightColours.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(SampleRamp, writesExactlyThreeBytesForEachSample) {
    const SampleRamp ramp(HeightRamp(0, 1792), {1, 0});
    for (std::size_t count = 0; count <= 13; ++count) {
        std::vector<std::int16_t> samples;
        for (std::size_t i = 0; i < count; ++i)
            samples.push_back(static_cast<std::int16_t>(100 + i));
        std::vector<std::uint8_t> pixels(count * 3 + 16, 0xEE);
        ramp.Paint(samples, pixels.data());
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(pixels[3 * i], 0);
            EXPECT_EQ(pixels[3 * i + 1], 0);
            EXPECT_EQ(pixels[3 * i + 2], 100 + i);
        }
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xEE), 16) << count;
    }
}

TEST(SampleRamp, hasTheOrderRedGreenBlue) {
    const SampleRamp ramp(HeightRamp(0, 1792), {1, 0});
    // One sample of each band whose three channels all differ or identify the band: yellow to red, and
    // magenta to white.
    const std::vector<std::int16_t> samples = {1034, 1546, 778, 300, 600};
    std::vector<std::uint8_t> pixels(samples.size() * 3);
    ramp.Paint(samples, pixels.data());
    EXPECT_EQ(pixels,
              (std::vector<std::uint8_t>{255, 245, 0, 255, 10, 255, 10, 255, 0, 0, 44, 255, 0, 255, 167}));
}

} // namespace
