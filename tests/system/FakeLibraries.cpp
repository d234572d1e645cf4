#include "FakeLibraries.h"

#include "cinder/Libraries.h"

namespace fakeLibraries {

int apiStatus = 1;
int deviceStatus = 1;
int apiStarts = 0;
int deviceStarts = 0;

} // namespace fakeLibraries

bStatus VeApiLib_Construct(const VeApiLib** handle) {
    ++fakeLibraries::apiStarts;
    return handle == nullptr ? 0 : fakeLibraries::apiStatus;
}

bStatus bCdLib_Construct(const bCdLib** handle) {
    ++fakeLibraries::deviceStarts;
    return handle == nullptr ? 0 : fakeLibraries::deviceStatus;
}
