#pragma once

#include "document/formats/Converter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What came of writing new paths into any bytes that are taken for a track.
struct PathUpdate {
    std::vector<TrackPath> paths;
    std::string original;
    int result = 0;
    std::string target; ///< the content of "target.trk" when it was written
};

/// Takes the paths from the input's end and what they are written into from its front, and lets a converter
/// update "original.trk" to "target.trk". Checks what holds for every encoding: a failure leaves the target
/// as it was, the original is left alone, nothing else is left behind, every file is closed.
PathUpdate UpdateAnyPaths(Converter& converter, const std::uint8_t* data, std::size_t size);
