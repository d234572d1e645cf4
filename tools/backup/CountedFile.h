#pragma once

#include "basalt/bFile.h"
#include "tools/commandline/Progress.h"

#include <string>

/// Opens a file whose reading moves a progress on.
/// @param progress must outlive the file
/// @throws Failure with ExitCode::Unreadable
bOwned<bFile> OpenCounted(const std::string& file, Progress& progress);
