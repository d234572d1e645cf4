#include "cinder/bCdLib.h"

struct bCdLib {};

bStatus bCdLib_Construct(const bCdLib** handle) {
    static const bCdLib library{};
    if (handle == nullptr)
        return bERROR_FILE;
    *handle = &library;
    return bOK;
}
