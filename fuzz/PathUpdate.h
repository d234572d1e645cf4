#pragma once

#include "document/formats/Converter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The outcome of writing new paths into any bytes, read as a track.
struct PathUpdate {
    std::vector<TrackPath> paths;
    std::string original;
    int result = 0;
    std::string target; ///< the content of "target.trk" when it was written
};

/// Takes the paths from the input's end and the original from its front, and lets a converter
/// update "original.trk" to "target.trk". Checks the rules of every encoding: a failure leaves the target
/// unchanged, the original is not modified, no other files are left over, every file is closed.
PathUpdate UpdateAnyPaths(Converter& converter, const std::uint8_t* data, std::size_t size);
