#pragma once

#include "basalt/bStatus.h"

/// The running device-platform library, from its start until the process ends.
struct bCdLib;

/// Starts the device-platform library and fills in its handle.
/// @return 1; bERROR_FILE when `handle` is null.
bStatus bCdLib_Construct(const bCdLib** handle);
