#include "SampleRamp.h"

#include "HeightMap.h"

#include <cmath>
#include <cstring>

namespace {

constexpr std::size_t kSamples = 65536;
constexpr std::size_t kPixelSize = 3;

} // namespace

SampleRamp::SampleRamp(const HeightRamp& ramp, const SampleScale& scale) : entries(kSamples) {
    for (std::size_t bits = 0; bits < kSamples; ++bits) {
        const auto sample = static_cast<std::int16_t>(bits);
        const double height = scale.HeightOf(sample);
        if (sample != kNoMeasurement && std::isfinite(height))
            entries[bits].colour = ramp.ColourOf(height);
    }
}

void SampleRamp::Paint(std::span<const std::int16_t> samples, std::uint8_t* pixels) const {
    if (samples.empty())
        return;
    // Each store writes one byte too many, which the next pixel overwrites; the last pixel has none after it.
    for (const std::int16_t sample : samples.first(samples.size() - 1)) {
        std::memcpy(pixels, &entries[static_cast<std::uint16_t>(sample)], sizeof(Entry));
        pixels += kPixelSize;
    }
    std::memcpy(pixels, &entries[static_cast<std::uint16_t>(samples.back())], kPixelSize);
}
