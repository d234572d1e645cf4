// Failures that the platform's own calls do not have today: the linker puts the functions of this file in
// their place, for this program alone (see --wrap in CMakeLists.txt).

#include "OstraSdkClient.h"

#include "DiscoveryResponder.h"
#include "ScriptedServer.h"
#include "ThrownBy.h"
#include "VeSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>

bStatus FailingParse(bIpAddress*, const char*) __asm__("__wrap__Z16bIpAddress_ParseP10bIpAddressPKc");
bStatus RealParse(bIpAddress*, const char*) __asm__("__real__Z16bIpAddress_ParseP10bIpAddressPKc");
bStatus FailingFormat(bIpAddress, char*, std::size_t) __asm__("__wrap__Z17bIpAddress_Format10bIpAddressPcm");
bStatus RealFormat(bIpAddress, char*, std::size_t) __asm__("__real__Z17bIpAddress_Format10bIpAddressPcm");
void FailingDisconnect(OstraSdk::VeSystem*) __asm__("__wrap__ZN8OstraSdk8VeSystem10DisconnectEv");
void RealDisconnect(OstraSdk::VeSystem*) __asm__("__real__ZN8OstraSdk8VeSystem10DisconnectEv");

namespace {

bool parseFails = false;
bool formatFails = false;
bool disconnectFails = false;

} // namespace

bStatus FailingParse(bIpAddress* address, const char* text) {
    return parseFails ? -77 : RealParse(address, text);
}

bStatus FailingFormat(bIpAddress address, char* text, std::size_t capacity) {
    return formatFails ? -78 : RealFormat(address, text, capacity);
}

void FailingDisconnect(OstraSdk::VeSystem* system) {
    if (disconnectFails)
        throw Ve::Exception(__LINE__, __FILE__, -79, "VeSystem::Disconnect", "The test wants it so.");
    RealDisconnect(system);
}

namespace {

class UnlikelyFailures : public testing::Test {
  protected:
    ~UnlikelyFailures() override { parseFails = formatFails = disconnectFails = false; }
};

TEST_F(UnlikelyFailures, anAddressThatCannotBeParsedStopsTheConstructor) {
    parseFails = true;
    ExpectThrown([] { const OstraSdkClient client; }, -77, "OstraSdkClient::OstraSdkClient",
                 "Failed to parse the ip address.");
}

TEST_F(UnlikelyFailures, anAddressThatCannotBeFormattedStopsTheDiscovery) {
    const DiscoveryResponder responder({DiscoveryAnswer(1, "10.0.0.1", 3600)});
    setenv("OSTRA_DISCOVERY", responder.Target().c_str(), 1);
    formatFails = true;
    std::vector<OstraServerInfo> list;
    ExpectThrown([&] { OstraSdkClient::DiscoverOstraServers(list); }, -78,
                 "OstraSdkClient::DiscoverOstraServers", "Failed to format the ip address.");
}

TEST_F(UnlikelyFailures, aFailedDisconnectTellsTheAddress) {
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    disconnectFails = true;
    ExpectThrown([&] { client.Disconnect(); }, -79, "OstraSdkClient::Disconnect",
                 "Failed to disconnect the OstraServer (127.0.0.1)");
}

TEST_F(UnlikelyFailures, aFailedDisconnectWhoseAddressCannotBeFormattedTellsThat) {
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    disconnectFails = true;
    formatFails = true;
    ExpectThrown([&] { client.Disconnect(); }, -78, "OstraSdkClient::Disconnect",
                 "Failed to format the ip address.");
}

} // namespace
