#pragma once

#include "basalt/FolderHandle.h"

#include <string>

/// Where this user's kept copies are: the folder that the environment variable CORVANE_KEPT names, else
/// "kept" in the user's data folder of the application. An absolute path; empty when the user has no data
/// folder.
std::string DefaultKeptFolder();

/// Opens the folder of kept copies. It is made when it is missing, with what is missing above it, for this
/// user alone. @throws std::system_error with the system's reason when that fails
FolderHandle OpenKeptFolder(const std::string& path);
