#pragma once

#include "tools/commandline/Failure.h"

#include <functional>
#include <string>
#include <vector>

/// Does the same with each of several files. A file that cannot be read is reported on standard error, and
/// the next one follows.
/// @param work returns Done or Found
/// @return Unreadable when any file could not be read, else Found when anything was found in any, else Done
/// @throws Failure of another kind
ExitCode ForEachFile(const std::string& command, const std::vector<std::string>& files,
                     const std::function<ExitCode(const std::string& file)>& work);
