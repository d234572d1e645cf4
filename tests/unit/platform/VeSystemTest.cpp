#include "ostrasdk/OstraSdk.h"

#include "ScriptedServer.h"
#include "ThrownBy.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"

#include <gtest/gtest.h>

namespace {

using OstraSdk::VeSystem;

constexpr bIpAddress kLoopback{{127, 0, 0, 1}};

TEST(VeSystem, sendsNothingUntilItConnects) {
    const ScriptedServer server(JsonReply("{}"));
    const VeSystem system(kLoopback, server.Port());
    EXPECT_FALSE(system.IsConnected());
    EXPECT_EQ(system.Address(), kLoopback);
    EXPECT_TRUE(server.Requests().empty());
}

TEST(VeSystem, isConnectedAfterTheServersInformation) {
    const ScriptedServer server(JsonReply(R"({"SerialNumber":1})"));
    VeSystem system(kLoopback, server.Port());
    system.Connect();
    EXPECT_TRUE(system.IsConnected());
    EXPECT_EQ(server.RequestLines(), std::vector<std::string>{"GET /system/info"});
    system.Disconnect();
    EXPECT_FALSE(system.IsConnected());
}

TEST(VeSystem, isNotConnectedByAnAnswerWithoutInformation) {
    for (const char* const text : {"[]", "", "1"}) {
        const ScriptedServer server(JsonReply(text));
        VeSystem system(kLoopback, server.Port());
        EXPECT_EQ(ThrownBy([&] { system.Connect(); }).Status(), bERROR_FORMAT) << text;
        EXPECT_FALSE(system.IsConnected());
    }
}

TEST(VeSystem, losesItsConnectionWhenItCannotConnectAgain) {
    int requests = 0;
    const ScriptedServer server(
        [&](const ScriptedRequest&) { return ++requests == 1 ? JsonReply("{}") : HttpReply(500, "", ""); });
    VeSystem system(kLoopback, server.Port());
    system.Connect();
    EXPECT_EQ(ThrownBy([&] { system.Connect(); }).Status(), bERROR_REFUSED);
    EXPECT_FALSE(system.IsConnected());
}

} // namespace
