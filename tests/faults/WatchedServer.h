#pragma once

#include "OperatorFiles.h"
#include "OstraServerProcess.h"

#include <string>

inline const std::string kServerFolder = "counts"; ///< below it lies what counts of a server's files
inline const std::string kServedFolder = "counts/workspace";
inline const std::string kServedTracks = kServedFolder + "/vdk/ContourPath/";

/// Writes files into a folder (its name with "/" at the end), which is made when it is missing.
void WriteFolder(const std::string& folder, const FileTree& files);

/// The real server of this folder, its calls going through the trial's report.
/// @param preload the library that watches them
OstraServerProcess StartWatched(const std::string& preload);
