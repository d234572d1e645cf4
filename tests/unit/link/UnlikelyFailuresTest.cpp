// Failures that the platform's calls do not produce today: the linker replaces them by the functions of this
// file, for this program only (see --wrap in CMakeLists.txt).

#include "link/OstraSdkClient.h"

#include "DiscoveryResponder.h"
#include "ScriptedServer.h"
#include "TemporaryFolder.h"
#include "ThrownBy.h"
#include "ostrasdk/VeDiscoveryClient.h"
#include "ostrasdk/VeSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>

bStatus FailingParse(bIpAddress*, const char*) __asm__("__wrap__Z16bIpAddress_ParseP10bIpAddressPKc");
bStatus RealParse(bIpAddress*, const char*) __asm__("__real__Z16bIpAddress_ParseP10bIpAddressPKc");
bStatus FailingFormat(bIpAddress, char*, std::size_t) __asm__("__wrap__Z17bIpAddress_Format10bIpAddressPcm");
bStatus RealFormat(bIpAddress, char*, std::size_t) __asm__("__real__Z17bIpAddress_Format10bIpAddressPcm");
void FailingDisconnect(OstraSdk::VeSystem*) __asm__("__wrap__ZN8OstraSdk8VeSystem10DisconnectEv");
void RealDisconnect(OstraSdk::VeSystem*) __asm__("__real__ZN8OstraSdk8VeSystem10DisconnectEv");
void WatchedSystem(OstraSdk::VeSystem*, const bIpAddress&,
                   unsigned) __asm__("__wrap__ZN8OstraSdk8VeSystemC1ERK10bIpAddressj");
void RealSystem(OstraSdk::VeSystem*, const bIpAddress&,
                unsigned) __asm__("__real__ZN8OstraSdk8VeSystemC1ERK10bIpAddressj");
void WatchedDiscover(OstraSdk::VeDiscoveryClient*,
                     std::int64_t) __asm__("__wrap__ZN8OstraSdk17VeDiscoveryClient16BlockingDiscoverEl");
void RealDiscover(OstraSdk::VeDiscoveryClient*,
                  std::int64_t) __asm__("__real__ZN8OstraSdk17VeDiscoveryClient16BlockingDiscoverEl");
OstraSdk::VeRequestResponse
WatchedGetResponse(OstraSdk::VeTransaction*,
                   std::int64_t) __asm__("__wrap__ZN8OstraSdk13VeTransaction11GetResponseEl");
OstraSdk::VeRequestResponse
RealGetResponse(OstraSdk::VeTransaction*,
                std::int64_t) __asm__("__real__ZN8OstraSdk13VeTransaction11GetResponseEl");
void WatchedCheckResponse(OstraSdk::VeTransaction*,
                          std::int64_t) __asm__("__wrap__ZN8OstraSdk13VeTransaction13CheckResponseEl");
void RealCheckResponse(OstraSdk::VeTransaction*,
                       std::int64_t) __asm__("__real__ZN8OstraSdk13VeTransaction13CheckResponseEl");
void* WatchedNew(std::size_t) __asm__("__wrap__Znwm");
void* RealNew(std::size_t) __asm__("__real__Znwm");

namespace {

bool parseFails = false;
bool formatFails = false;
bool disconnectFails = false;
bool discoveryFails = false;
bIpAddress systemAddress;
unsigned systemPort = 0;
std::int64_t discoveryTimeout = 0;
/// The time-out of each wait for a response.
std::vector<std::string> waits;
/// Throws instead of each wait.
std::function<void()> insteadOfWaiting;
std::size_t watchedSize = 0;
/// Called once, when the thread that set it allocates `watchedSize` bytes.
thread_local std::function<void()> onAllocation;

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

void WatchedSystem(OstraSdk::VeSystem* system, const bIpAddress& address, unsigned port) {
    systemAddress = address;
    systemPort = port;
    RealSystem(system, address, port);
}

void WatchedDiscover(OstraSdk::VeDiscoveryClient* discovery, std::int64_t timeout) {
    discoveryTimeout = timeout;
    if (discoveryFails)
        throw Ve::Exception(__LINE__, __FILE__, -80, "VeDiscoveryClient::BlockingDiscover", "No network.");
    RealDiscover(discovery, timeout);
}

OstraSdk::VeRequestResponse WatchedGetResponse(OstraSdk::VeTransaction* transaction, std::int64_t timeout) {
    waits.push_back("GetResponse " + std::to_string(timeout));
    if (insteadOfWaiting)
        insteadOfWaiting();
    return RealGetResponse(transaction, timeout);
}

void WatchedCheckResponse(OstraSdk::VeTransaction* transaction, std::int64_t timeout) {
    waits.push_back("CheckResponse " + std::to_string(timeout));
    if (insteadOfWaiting)
        return insteadOfWaiting();
    RealCheckResponse(transaction, timeout);
}

void* WatchedNew(std::size_t size) {
    if (onAllocation && size == watchedSize)
        std::exchange(onAllocation, nullptr)();
    return RealNew(size);
}

namespace {

class UnlikelyFailures : public testing::Test {
  protected:
    ~UnlikelyFailures() override {
        parseFails = formatFails = disconnectFails = discoveryFails = false;
        onAllocation = nullptr;
        insteadOfWaiting = nullptr;
    }
};

constexpr std::size_t kFileSize = 300'007; // unlike any other allocation here

/// A file that is changed after its size is read and before its bytes are: at the allocation of the memory
/// for them.
class ChangingFile : public UnlikelyFailures {
  protected:
    ChangingFile() { WriteFile("a.osbak", content); }

    void ChangeDuringTheRead(const std::function<void()>& change) {
        watchedSize = kFileSize;
        onAllocation = change;
    }
    void ExpectNotRead() {
        ExpectThrown([&] { OstraSdkClient::ReadFileBuffer("a.osbak", buffer); }, -997, "ReadFileBuffer",
                     "Failed to open a.osbak.");
        EXPECT_FALSE(onAllocation) << "the change was not made";
    }

    const TemporaryFolder folder;
    const std::string content = std::string(kFileSize, 'a');
    std::vector<std::uint8_t> buffer;
};

TEST_F(ChangingFile, isRefusedWhenItGrowsDuringTheRead) {
    ChangeDuringTheRead([] { std::filesystem::resize_file("a.osbak", kFileSize + 1); });
    ExpectNotRead();
}

TEST_F(ChangingFile, isRefusedWhenItShrinksDuringTheRead) {
    ChangeDuringTheRead([] { std::filesystem::resize_file("a.osbak", kFileSize - 1); });
    ExpectNotRead();
    WriteFile("a.osbak", content);
    ChangeDuringTheRead([] { std::filesystem::resize_file("a.osbak", 0); });
    buffer = std::vector<std::uint8_t>();
    ExpectNotRead();
}

TEST_F(ChangingFile, isReadAsItWasWhenReplacedDuringTheRead) {
    ChangeDuringTheRead([] {
        WriteFile("new", std::string(kFileSize + 5, 'b'));
        std::filesystem::rename("new", "a.osbak");
    });
    OstraSdkClient::ReadFileBuffer("a.osbak", buffer);
    EXPECT_FALSE(onAllocation) << "the change was not made";
    EXPECT_TRUE(std::string(buffer.begin(), buffer.end()) == content);
}

TEST_F(ChangingFile, isNotSentToTheServer) {
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    ChangeDuringTheRead([] { std::filesystem::resize_file("a.osbak", kFileSize + 1); });
    ExpectThrown([&] { client.Restore("a.osbak"); }, -997, "ReadFileBuffer", "Failed to open a.osbak.");
    EXPECT_EQ(server.Requests().size(), 1U); // the connection's own
}

// Values that only the platform gets are recorded by the functions that replace it.
TEST(OstraSdkClient, usesLoopbackAndTheDefaultPortInitially) {
    const OstraSdkClient client;
    EXPECT_EQ(systemAddress, (bIpAddress{{127, 0, 0, 1}}));
    EXPECT_EQ(systemPort, 3600U);
}

TEST(OstraSdkClient, discoversServersWithATimeoutOfTenThousand) {
    const DiscoveryResponder responder({DiscoveryAnswer(1, "10.0.0.1", 3600)});
    setenv("OSTRA_DISCOVERY", responder.Target().c_str(), 1);
    std::vector<OstraServerInfo> list;
    OstraSdkClient::DiscoverOstraServers(list);
    EXPECT_EQ(discoveryTimeout, 10000);
}

TEST(OstraSdkClient, waitsForEachResponseForItsRequestsTimeout) {
    const TemporaryFolder folder;
    WriteFile("a.osbak", "archive");
    const ScriptedServer server(
        std::map<std::string, ScriptedReply>{{"/system/info", JsonReply("{}")},
                                             {"/system/commands/archive", DataReply("archive")},
                                             {"/system/commands/restore", JsonReply("{}")},
                                             {"/replay/playback", JsonReply(R"({"enabled":true})")}});
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    waits.clear();
    client.Backup("Ostra.osbak");
    client.Restore("a.osbak");
    EXPECT_TRUE(client.GetReplayMode());
    client.SetReplayMode(true);
    EXPECT_THAT(waits, testing::ElementsAre("GetResponse 180000000", "CheckResponse 180000000",
                                            "GetResponse 3000000", "CheckResponse 3000000"));
}

TEST_F(UnlikelyFailures, unparsableAddressStopsTheConstructor) {
    parseFails = true;
    ExpectThrown([] { const OstraSdkClient client; }, -77, "OstraSdkClient::OstraSdkClient",
                 "Failed to parse the ip address.");
}

TEST_F(UnlikelyFailures, unparsableAddressStopsTheConnectWithTheParsersStatus) {
    OstraSdkClient client;
    parseFails = true;
    ExpectThrown([&] { client.Connect("127.0.0.1", 1); }, -77, "OstraSdkClient::Connect",
                 "Failed to parse the ip address.");
    EXPECT_EQ(systemPort, 3600U) << "no system is made for that address";
}

TEST_F(UnlikelyFailures, failedDiscoveryIsRethrownAndLeavesNoServers) {
    discoveryFails = true;
    std::vector<OstraServerInfo> list(3);
    ExpectThrown([&] { OstraSdkClient::DiscoverOstraServers(list); }, -80,
                 "VeDiscoveryClient::BlockingDiscover", "No network.");
    EXPECT_TRUE(list.empty());
}

TEST_F(UnlikelyFailures, unformattableAddressStopsTheDiscovery) {
    const DiscoveryResponder responder({DiscoveryAnswer(1, "10.0.0.1", 3600)});
    setenv("OSTRA_DISCOVERY", responder.Target().c_str(), 1);
    formatFails = true;
    std::vector<OstraServerInfo> list;
    ExpectThrown([&] { OstraSdkClient::DiscoverOstraServers(list); }, -78,
                 "OstraSdkClient::DiscoverOstraServers", "Failed to format the ip address.");
}

TEST_F(UnlikelyFailures, failedDisconnectReportsTheAddress) {
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    disconnectFails = true;
    ExpectThrown([&] { client.Disconnect(); }, -79, "OstraSdkClient::Disconnect",
                 "Failed to disconnect the OstraServer (127.0.0.1)");
}

TEST_F(UnlikelyFailures, anyExceptionOfARequestBecomesItsOwnFailure) {
    const TemporaryFolder folder;
    WriteFile("a.osbak", "archive");
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const std::vector<std::function<void()>> thrown = {
        [] { throw Ve::Exception(__LINE__, __FILE__, -81, "VeTransaction", "Not shown."); },
        [] { throw std::runtime_error("Not shown."); }, [] { throw 1; }};
    for (const std::function<void()>& throwing : thrown) {
        insteadOfWaiting = throwing;
        ExpectThrown([&] { client.Backup("Ostra.osbak"); }, -998, "OstraSdkClient::Backup",
                     "Failed to call the Backup request.");
        ExpectThrown([&] { client.Restore("a.osbak"); }, -998, "OstraSdkClient::Restore",
                     "Failed to call the Restore request.");
        ExpectThrown([&] { static_cast<void>(client.GetReplayMode()); }, -998,
                     "OstraSdkClient::GetReplayMode", "Failed to get the status of the replay mode.");
        ExpectThrown([&] { client.SetReplayMode(true); }, -998, "OstraSdkClient::SetReplayMode",
                     "Failed to set the replay mode.");
    }
    EXPECT_FALSE(std::filesystem::exists("Ostra.osbak"));
}

TEST_F(UnlikelyFailures, failedDisconnectPreventsTheNextConnect) {
    const ScriptedServer first(JsonReply("{}"));
    const ScriptedServer second(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", first.Port());
    disconnectFails = true;
    ExpectThrown([&] { client.Connect("127.0.0.1", second.Port()); }, -79, "OstraSdkClient::Disconnect",
                 "Failed to disconnect the OstraServer (127.0.0.1)");
    EXPECT_TRUE(second.Requests().empty());
    EXPECT_TRUE(client.IsConnected());
}

TEST_F(UnlikelyFailures, failedDisconnectReportsAnUnformattableAddress) {
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    disconnectFails = true;
    formatFails = true;
    ExpectThrown([&] { client.Disconnect(); }, -78, "OstraSdkClient::Disconnect",
                 "Failed to format the ip address.");
}

} // namespace
