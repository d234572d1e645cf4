#pragma once

#include "bStatus.h"

/// Nonzero when `path` names an existing regular file.
int bFile_Exists(const char* path);

/// Removes the file `path`.
/// @return 1; bERROR_NOT_FOUND when there is none; bERROR_FILE when it cannot be removed.
bStatus bFile_Delete(const char* path);
