#pragma once

#include "samples/MachinedPart.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The number `value` / 10^`places` in decimal digits, without trailing zeros: Decimal(-1250, 3) is "-1.25".
std::string Decimal(std::int64_t value, int places);

enum class TrackFormat { Text, Binary };

/// What a sample holds besides the part.
struct SampleOptions {
    TrackFormat format = TrackFormat::Text;
    bool paths = true;
};

/// A path in UTF-8 for the standard library, which expects narrow paths in another encoding on some systems.
std::filesystem::path PathOf(const std::string& path);

/// Writes the part as a track file, row by row. Both encodings of a part read back as the same raw height
/// map. This writer is independent of the editor's own: it is made from the description of the format alone.
/// @throw std::runtime_error when the file cannot be written completely; the partial file is removed
void WriteTrackFile(const std::string& path, const MachinedPart& part, const SampleOptions& options);
