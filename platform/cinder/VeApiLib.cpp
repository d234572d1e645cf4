#include "cinder/VeApiLib.h"

struct VeApiLib {};

bStatus VeApiLib_Construct(const VeApiLib** handle) {
    static const VeApiLib library{};
    if (handle == nullptr)
        return bERROR_FILE;
    *handle = &library;
    return bOK;
}
