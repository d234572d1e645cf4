#include "document/formats/HeightColours.h"

#include "document/formats/Heights.h"

#include <bit>
#include <cmath>
#include <cstring>

const HeightRamp::Colour& HeightColours::ColourOf(double height) const {
    return std::isfinite(height) ? ramp.ColourOf(height) : HeightRamp::kBlack;
}

/// The first height decides for which number of decimals the table is.
const HeightRamp::Colour& HeightColours::ColourOutside(PackedDecimal height) {
    if (fraction == kNotYetSeen)
        fraction = height.fraction;
    return ramp.ColourOf(height.Value());
}

static_assert(std::endian::native == std::endian::little,
              "pixels are moved as numbers, red in the lowest byte");

namespace {

constexpr std::size_t kSamples = 65536;
constexpr std::size_t kPixelSize = 3;
constexpr std::size_t kPixelsAtOnce = 4;

} // namespace

SampleRamp::SampleRamp(const HeightRamp& ramp, const SampleScale& scale) : pixels(kSamples) {
    for (std::size_t bits = 0; bits < kSamples; ++bits) {
        const auto sample = static_cast<std::int16_t>(bits);
        const double height = scale.HeightOf(sample);
        if (sample != kNoMeasurement && std::isfinite(height))
            std::memcpy(&pixels[bits], ramp.ColourOf(height).data(), kPixelSize);
    }
}

void SampleRamp::Paint(std::span<const std::int16_t> samples, std::uint8_t* target) const {
    // Four pixels are combined in registers into twelve bytes: two stores instead of twelve.
    for (; samples.size() >= kPixelsAtOnce; samples = samples.subspan(kPixelsAtOnce)) {
        const std::uint64_t third = PixelOf(samples[2]);
        const std::uint64_t first8 =
            std::uint64_t{PixelOf(samples[0])} | std::uint64_t{PixelOf(samples[1])} << 24 | third << 48;
        const auto last4 = static_cast<std::uint32_t>(third >> 16 | std::uint64_t{PixelOf(samples[3])} << 8);
        std::memcpy(target, &first8, sizeof first8);
        std::memcpy(target + sizeof first8, &last4, sizeof last4);
        target += kPixelsAtOnce * kPixelSize;
    }
    for (const std::int16_t sample : samples) {
        std::memcpy(target, &pixels[static_cast<std::uint16_t>(sample)], kPixelSize);
        target += kPixelSize;
    }
}
