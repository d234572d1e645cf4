#pragma once

#include "document/formats/HeightRamp.h"
#include "document/formats/SampleScale.h"

#include <cstdint>
#include <span>
#include <vector>

/// The colours of all 65,536 raw samples, looked up instead of computed for each cell.
class SampleRamp {
  public:
    /// The ramp must be valid. Samples without a measurement, and those whose height is not finite, are
    /// black.
    SampleRamp(const HeightRamp& ramp, const SampleScale& scale);

    /// Writes one pixel, three bytes in the order red, green, blue, for each sample; nothing beyond them.
    void Paint(std::span<const std::int16_t> samples, std::uint8_t* target) const;

  private:
    [[nodiscard]] std::uint32_t PixelOf(std::int16_t sample) const {
        return pixels[static_cast<std::uint16_t>(sample)];
    }

    /// Red in the lowest byte, then green and blue; indexed by the sample's bits, taken as an unsigned
    /// number.
    std::vector<std::uint32_t> pixels;
};
