#pragma once

#include "basalt/bStatus.h"

/// The running API library, from its start until the process ends.
struct VeApiLib;

/// Starts the API library and fills in its handle.
/// @return 1; bERROR_FILE when `handle` is null.
bStatus VeApiLib_Construct(const VeApiLib** handle);

/// The running device-platform library, from its start until the process ends.
struct bCdLib;

/// Starts the device-platform library and fills in its handle.
/// @return 1; bERROR_FILE when `handle` is null.
bStatus bCdLib_Construct(const bCdLib** handle);
