#pragma once

#include "OperatorFiles.h"
#include "OstraServerProcess.h"

#include <string>

inline const std::string kServerFolder = "counts"; ///< contains the watched files of a server
inline const std::string kServedFolder = "counts/workspace";
inline const std::string kServedTracks = kServedFolder + "/vdk/ContourPath/";

/// Starts the real server on this folder, with its file calls watched.
/// @param preload the library that watches the calls
OstraServerProcess StartWatched(const std::string& preload);
