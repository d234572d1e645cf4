#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// How a track file is written.
enum class TrackEncoding : std::uint8_t { Text, Binary };

/// The encoding of a file, by its first line: binary when that holds "Trac", else text; none for a file that
/// cannot be read.
[[nodiscard]] std::optional<TrackEncoding> EncodingOf(const std::string& path);
