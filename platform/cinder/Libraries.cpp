#include "cinder/Libraries.h"

struct VeApiLib {};

bStatus VeApiLib_Construct(const VeApiLib** handle) {
    static const VeApiLib library{};
    if (handle == nullptr)
        return bERROR_FILE;
    *handle = &library;
    return bOK;
}

struct bCdLib {};

bStatus bCdLib_Construct(const bCdLib** handle) {
    static const bCdLib library{};
    if (handle == nullptr)
        return bERROR_FILE;
    *handle = &library;
    return bOK;
}
