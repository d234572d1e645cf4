// The entry points of the two libraries, which the program calls first.

#include "cinder/Libraries.h"

#include <gtest/gtest.h>

namespace {

TEST(Libraries, areTheSameForEveryCaller) {
    const VeApiLib* api = nullptr;
    const VeApiLib* sameApi = nullptr;
    EXPECT_EQ(VeApiLib_Construct(&api), bOK);
    EXPECT_EQ(VeApiLib_Construct(&sameApi), bOK);
    EXPECT_NE(api, nullptr);
    EXPECT_EQ(api, sameApi);
    const bCdLib* device = nullptr;
    const bCdLib* sameDevice = nullptr;
    EXPECT_EQ(bCdLib_Construct(&device), bOK);
    EXPECT_EQ(bCdLib_Construct(&sameDevice), bOK);
    EXPECT_NE(device, nullptr);
    EXPECT_EQ(device, sameDevice);
}

TEST(Libraries, needAPointerForTheirHandle) {
    EXPECT_EQ(VeApiLib_Construct(nullptr), bERROR_FILE);
    EXPECT_EQ(bCdLib_Construct(nullptr), bERROR_FILE);
}

} // namespace
