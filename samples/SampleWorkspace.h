#pragma once

#include <cstdint>
#include <string>

/// Writes the workspace of a sensor into a folder, which is made when it does not exist: settings, the folder
/// "vdk/ContourPath" with tracks in both encodings and a file that is no track, and an empty folder.
/// @throw std::exception when something cannot be written
void WriteSampleWorkspace(const std::string& folder, std::uint32_t seed);
