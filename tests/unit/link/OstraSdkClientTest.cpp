#include "link/OstraSdkClient.h"

#include "DiscoveryResponder.h"
#include "FileSizeLimit.h"
#include "LogCapture.h"
#include "LoopbackSocket.h"
#include "ScriptedServer.h"
#include "TemporaryFolder.h"
#include "ThrownBy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInfo = "GET /system/info";
constexpr const char* kArchive = "POST /system/commands/archive";
constexpr const char* kRestore = "POST /system/commands/restore";

/// A server that answers every request successfully.
std::map<std::string, ScriptedReply> WillingReplies() {
    return {{"/system/info", JsonReply(DiscoveryAnswer(1, "127.0.0.1", 3600))},
            {"/system/commands/archive", DataReply("the archive")},
            {"/system/commands/restore", JsonReply("{}")},
            {"/replay/playback", JsonReply(R"({"enabled":true})")}};
}

/// The same with one other reply.
std::map<std::string, ScriptedReply> WillingExcept(const std::string& path, const ScriptedReply& reply) {
    auto replies = WillingReplies();
    replies[path] = reply;
    return replies;
}

/// A loopback port without a listener.
unsigned int ClosedPort() {
    return LoopbackSocket().Port();
}

void ExpectBackupRequestFails(OstraSdkClient& client) {
    WriteFile("Ostra.osbak", "old");
    ExpectThrown([&] { client.Backup("Ostra.osbak"); }, -998, "OstraSdkClient::Backup",
                 "Failed to call the Backup request.");
    EXPECT_EQ(FileContent("Ostra.osbak"), "old");
}

void ExpectReplayModeFails(OstraSdkClient& client) {
    ExpectThrown([&] { static_cast<void>(client.GetReplayMode()); }, -998, "OstraSdkClient::GetReplayMode",
                 "Failed to get the status of the replay mode.");
}

std::size_t EntriesHere() {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("."), {}));
}

// Connecting

TEST(OstraSdkClient, isNotConnectedAtFirst) {
    const OstraSdkClient client;
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, connectsByAskingForTheServersInformation) {
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    EXPECT_TRUE(client.IsConnected());
    EXPECT_THAT(server.RequestLines(), ElementsAre(kInfo));
}

TEST(OstraSdkClient, refusesToConnectToWhatIsNoAddress) {
    OstraSdkClient client;
    for (const char* const text : {"", "localhost", "1.2.3", "1.2.3.4.5", "256.1.1.1", "127.0.0.1 ", "%s%n"})
        ExpectThrown([&] { client.Connect(text, 3600); }, -2, "OstraSdkClient::Connect",
                     "Failed to parse the ip address.");
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, reportsTheAddressThatItCouldNotConnectTo) {
    OstraSdkClient client;
    ExpectThrown([&] { client.Connect("127.0.0.1", ClosedPort()); }, -990, "OstraSdkClient::Connect",
                 "Failed to connect the OstraServer (127.0.0.1).");
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, failsToConnectToAnImpossiblePort) {
    OstraSdkClient client;
    for (const unsigned int port : {0U, 65536U, 99999U, 4294967295U})
        ExpectThrown([&] { client.Connect("127.0.0.1", port); }, -2, "OstraSdkClient::Connect",
                     "Failed to connect the OstraServer (127.0.0.1).");
}

TEST(OstraSdkClient, failsToConnectToAServerThatRefuses) {
    const ScriptedServer server(HttpReply(500, "application/json", R"({"error":"no"})"));
    OstraSdkClient client;
    ExpectThrown([&] { client.Connect("127.0.0.1", server.Port()); }, -991, "OstraSdkClient::Connect",
                 "Failed to connect the OstraServer (127.0.0.1).");
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, givesUpConnectingToASilentServerAfterFiveSeconds) {
    const ScriptedServer server(SilentReply());
    OstraSdkClient client;
    const auto start = std::chrono::steady_clock::now();
    ExpectThrown([&] { client.Connect("127.0.0.1", server.Port()); }, -989, "OstraSdkClient::Connect",
                 "Failed to connect the OstraServer (127.0.0.1).");
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken.count(), 4.9);
    EXPECT_LT(taken.count(), 8);
}

TEST(OstraSdkClient, isNotConnectedAfterAFailedConnectToAnotherServer) {
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    EXPECT_THROW(client.Connect("127.0.0.1", ClosedPort()), Ve::Exception);
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, disconnectsTheOldServerBeforeCheckingTheNewAddress) {
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    EXPECT_THROW(client.Connect("no address", server.Port()), Ve::Exception);
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, sendsItsRequestsToTheServerItConnectedToLast) {
    const ScriptedServer first(WillingReplies());
    const ScriptedServer second(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", first.Port());
    client.Connect("127.0.0.1", second.Port());
    EXPECT_TRUE(client.GetReplayMode());
    EXPECT_THAT(first.RequestLines(), ElementsAre(kInfo));
    EXPECT_THAT(second.RequestLines(), ElementsAre(kInfo, "GET /replay/playback"));
}

TEST(OstraSdkClient, disconnects) {
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    client.Disconnect();
    EXPECT_FALSE(client.IsConnected());
    ExpectThrown([&] { client.Backup("a.osbak"); }, -988, "OstraSdkClient::Backup",
                 "The client hasn't connected to any Ostra Server.");
}

TEST(OstraSdkClient, doesNothingToDisconnectWhenNotConnected) {
    OstraSdkClient client;
    EXPECT_NO_THROW(client.Disconnect());
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, staysConnectedToAServerThatHasDiedUntilItDisconnects) {
    OstraSdkClient client;
    {
        const ScriptedServer server(WillingReplies());
        client.Connect("127.0.0.1", server.Port());
    }
    EXPECT_TRUE(client.IsConnected());
    ExpectReplayModeFails(client);
    EXPECT_TRUE(client.IsConnected());
    EXPECT_NO_THROW(client.Disconnect());
    EXPECT_FALSE(client.IsConnected());
}

TEST(OstraSdkClient, failsEveryRequestImmediatelyWhenNotConnected) {
    const TemporaryFolder folder;
    OstraSdkClient client;
    constexpr const char* kMessage = "The client hasn't connected to any Ostra Server.";
    ExpectThrown([&] { client.Backup("a"); }, -988, "OstraSdkClient::Backup", kMessage);
    ExpectThrown([&] { client.Restore("missing"); }, -988, "OstraSdkClient::Restore", kMessage);
    ExpectThrown([&] { static_cast<void>(client.GetReplayMode()); }, -988, "OstraSdkClient::GetReplayMode",
                 kMessage);
    ExpectThrown([&] { client.SetReplayMode(true); }, -988, "OstraSdkClient::SetReplayMode", kMessage);
    EXPECT_EQ(EntriesHere(), 0U);
}

TEST(OstraSdkClient, namesItsOwnSourceInEveryFailure) {
    const TemporaryFolder folder;
    OstraSdkClient client;
    std::vector<std::uint8_t> buffer;
    const std::vector<std::function<void()>> failures = {
        [&] { client.Connect("no address", 3600); },
        [&] { client.Connect("127.0.0.1", ClosedPort()); },
        [&] { client.Backup("a"); },
        [&] { client.Restore("a"); },
        [&] { static_cast<void>(client.GetReplayMode()); },
        [&] { client.SetReplayMode(true); },
        [&] { OstraSdkClient::ReadFileBuffer("missing", buffer); }};
    std::set<int> lines;
    for (const std::function<void()>& failure : failures) {
        const Ve::Exception e = ThrownBy(failure);
        EXPECT_THAT(e.File(), testing::EndsWith("OstraSdkClient.cpp")) << e.what();
        EXPECT_GT(e.Line(), 0) << e.what();
        lines.insert(e.Line());
    }
    EXPECT_EQ(lines.size(), failures.size()) << "each failure has its own line";
}

// Backup

TEST(OstraSdkClient, writesTheServersArchiveToTheFile) {
    const TemporaryFolder folder;
    std::string archive;
    for (int i = 0; i < 3'000'000; ++i)
        archive += static_cast<char>(i * 7 + i / 251);
    const ScriptedServer server(WillingExcept("/system/commands/archive", DataReply(archive)));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    client.Backup("Ostra.osbak");
    EXPECT_TRUE(FileContent("Ostra.osbak") == archive);
    ASSERT_THAT(server.RequestLines(), ElementsAre(kInfo, kArchive));
    EXPECT_EQ(server.Requests()[1].Field("Content-Type"), "application/json");
    EXPECT_EQ(server.Requests()[1].body, R"({"contents":["allWorkspaces"]})");
}

TEST(OstraSdkClient, writesAnEmptyFileForAnEmptyArchive) {
    const TemporaryFolder folder;
    const ScriptedServer server(WillingExcept("/system/commands/archive", DataReply("")));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    WriteFile("Ostra.osbak", "old");
    client.Backup("Ostra.osbak");
    EXPECT_TRUE(std::filesystem::exists("Ostra.osbak"));
    EXPECT_EQ(FileContent("Ostra.osbak"), "");
}

TEST(OstraSdkClient, reportsTheBackupFileThatItCannotWrite) {
    const TemporaryFolder folder;
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const std::string name : {"missing/%s.osbak", "folder", "pipe"})
        ExpectThrown([&] { client.Backup(name); }, -997, "OstraSdkClient::Backup",
                     "Failed to open the file - " + name);
    EXPECT_THAT(server.RequestLines(), ElementsAre(kInfo, kArchive, kArchive, kArchive));
}

TEST(OstraSdkClient, keepsTheOldBackupWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    const std::string archive(200'000, 'n');
    const ScriptedServer server(WillingExcept("/system/commands/archive", DataReply(archive)));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    WriteFile("Ostra.osbak", "old");
    for (const rlim_t maxSize : std::initializer_list<rlim_t>{0, 1, 4096, 65536, 199'999}) {
        SCOPED_TRACE(maxSize);
        const FileSizeLimit limit(maxSize);
        ExpectThrown([&] { client.Backup("Ostra.osbak"); }, -997, "OstraSdkClient::Backup",
                     "Failed to open the file - Ostra.osbak");
        EXPECT_EQ(FileContent("Ostra.osbak"), "old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
    }
    EXPECT_TRUE(client.IsConnected());
    const FileSizeLimit limit(archive.size());
    client.Backup("Ostra.osbak");
    EXPECT_TRUE(FileContent("Ostra.osbak") == archive);
}

TEST(OstraSdkClient, failsTheBackupThatAServerRefuses) {
    const TemporaryFolder folder;
    for (const int status : {100, 201, 204, 301, 404, 405, 500, 999}) {
        SCOPED_TRACE(status);
        const ScriptedServer server(WillingExcept(
            "/system/commands/archive", HttpReply(status, "application/cbor", CborDataHead(3) + "abc")));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectBackupRequestFails(client);
    }
}

TEST(OstraSdkClient, failsTheBackupOfAReplyThatIsNoArchive) {
    const TemporaryFolder folder;
    const std::string nested(100'000, '[');
    const std::map<std::string, ScriptedReply> bad = {
        {"empty body", HttpReply(200, "application/json", "")},
        {"JSON cut short", JsonReply(R"({"data":)")},
        {"JSON of another type", JsonReply(R"(["data"])")},
        {"no data", JsonReply("{}")},
        {"data as a text", JsonReply(R"({"data":"abc"})")},
        {"data as a number", JsonReply(R"({"data":1})")},
        {"data as null", JsonReply(R"({"data":null})")},
        {"JSON nested deep", JsonReply(nested)},
        {"JSON nested deep and closed", JsonReply(nested + std::string(100'000, ']'))},
        {"random text", HttpReply(200, "text/html", "<html>")},
        {"empty CBOR", HttpReply(200, "application/cbor", "")},
        {"CBOR cut short", HttpReply(200, "application/cbor", CborDataHead(10) + "abc")},
        {"CBOR of another type", HttpReply(200, "application/cbor", "\x01")},
        {"CBOR without data", HttpReply(200, "application/cbor", "\xA0")},
        {"CBOR data as a text", HttpReply(200, "application/cbor",
                                          "\xA1\x64"
                                          "data\x63"
                                          "abc")},
        {"CBOR nested deep", HttpReply(200, "application/cbor", std::string(100'000, '\x81'))},
        {"CBOR length of 10 GB", HttpReply(200, "application/cbor", CborDataHead(10'000'000'000))},
        {"CBOR length of everything", HttpReply(200, "application/cbor", CborDataHead(UINT64_MAX))},
        {"CBOR of indefinite length", HttpReply(200, "application/cbor",
                                                "\xA1\x64"
                                                "data\x5F\x41"
                                                "a\xFF")},
        {"archive under the JSON type", HttpReply(200, "application/json", CborDataHead(3) + "abc")},
    };
    for (const auto& [name, reply] : bad) {
        SCOPED_TRACE(name);
        const ScriptedServer server(WillingExcept("/system/commands/archive", reply));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectBackupRequestFails(client);
        EXPECT_TRUE(client.GetReplayMode()); // the next operation works
    }
}

TEST(OstraSdkClient, failsTheBackupShorterThanItsDeclaredLength) {
    const TemporaryFolder folder;
    for (const std::string length : {"3000000000", "10000000000", "18446744073709551615",
                                     "18446744073709551616", "-1", "1e3", "12\r\nContent-Length: 13"}) {
        SCOPED_TRACE(length);
        ScriptedReply reply;
        reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\nContent-Length: " + length +
                      "\r\n\r\n" + CborDataHead(2'999'999'986) + "abc";
        const ScriptedServer server(WillingExcept("/system/commands/archive", reply));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectBackupRequestFails(client);
    }
}

TEST(OstraSdkClient, failsTheBackupTruncatedAtAnyTenth) {
    const TemporaryFolder folder;
    const ScriptedReply complete = DataReply(std::string(1'000'000, 'a'));
    for (std::uint64_t tenth = 0; tenth < 10; ++tenth) {
        SCOPED_TRACE(tenth);
        ScriptedReply cut = complete;
        cut.cutAfter = complete.bytes.size() * tenth / 10;
        const ScriptedServer server(WillingExcept("/system/commands/archive", cut));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectBackupRequestFails(client);
        EXPECT_EQ(EntriesHere(), 1U);
    }
}

// Restore

TEST(OstraSdkClient, sendsTheCompleteFileToRestore) {
    const TemporaryFolder folder;
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    std::string archive;
    for (int i = 0; i < 1'000'000; ++i)
        archive += static_cast<char>(i * 13 + i / 256);
    WriteFile("a.osbak", archive);
    client.Restore("a.osbak");
    ASSERT_THAT(server.RequestLines(), ElementsAre(kInfo, kRestore));
    const ScriptedRequest request = server.Requests()[1];
    EXPECT_EQ(request.Field("Content-Type"), "application/cbor");
    const std::string expected = std::string("\xA2\x68"
                                             "contents\x81\x6D"
                                             "allWorkspaces\x64"
                                             "data\x5A\x00\x0F\x42\x40",
                                             35) +
                                 archive;
    EXPECT_TRUE(request.body == expected);
    EXPECT_EQ(request.Field("Content-Length"), std::to_string(expected.size()));
}

TEST(OstraSdkClient, refusesToRestoreAMissingFileBeforeAnyRequest) {
    const TemporaryFolder folder;
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    std::filesystem::create_directory("folder");
    for (const std::string name : {"missing %s.osbak", "folder", ""})
        ExpectThrown([&] { client.Restore(name); }, -999, "OstraSdkClient::Restore",
                     name + " doesn't exist.");
    EXPECT_THAT(server.RequestLines(), ElementsAre(kInfo));
}

TEST(OstraSdkClient, refusesToRestoreAnEmptyFileBeforeAnyRequest) {
    const TemporaryFolder folder;
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    WriteFile("%d.osbak", "");
    ExpectThrown([&] { client.Restore("%d.osbak"); }, -997, "ReadFileBuffer", "%d.osbak is empty.");
    EXPECT_THAT(server.RequestLines(), ElementsAre(kInfo));
}

TEST(OstraSdkClient, failsTheRestoreThatAServerRefuses) {
    const TemporaryFolder folder;
    WriteFile("a.osbak", "archive");
    for (const int status : {400, 404, 413, 422, 500}) {
        const ScriptedServer server(WillingExcept(
            "/system/commands/restore", HttpReply(status, "application/json", R"({"error":"%s no"})")));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectThrown([&] { client.Restore("a.osbak"); }, -998, "OstraSdkClient::Restore",
                     "Failed to call the Restore request.");
    }
}

TEST(OstraSdkClient, endsTheRestoreWhenTheServerRefusesBeforeReadingTheFile) {
    const TemporaryFolder folder;
    WriteFile("a.osbak", std::string(30'000'000, 'a'));
    ScriptedReply refusal = HttpReply(413, "application/json", R"({"error":"too large"})");
    refusal.closes = false;
    ScriptedServer server(WillingExcept("/system/commands/restore", refusal));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    server.LeaveBodiesUnread();
    const auto start = std::chrono::steady_clock::now();
    ExpectThrown([&] { client.Restore("a.osbak"); }, -998, "OstraSdkClient::Restore",
                 "Failed to call the Restore request.");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

// Replay mode

TEST(OstraSdkClient, readsTheReplayMode) {
    for (const bool enabled : {true, false}) {
        const ScriptedServer server(WillingExcept(
            "/replay/playback", JsonReply(enabled ? R"({"enabled":true})" : R"({"enabled": false})")));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        EXPECT_EQ(client.GetReplayMode(), enabled);
        EXPECT_THAT(server.RequestLines(), ElementsAre(kInfo, "GET /replay/playback"));
        EXPECT_EQ(server.Requests()[1].bodySize, 0U);
    }
}

TEST(OstraSdkClient, setsTheReplayMode) {
    const ScriptedServer server(WillingReplies());
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    client.SetReplayMode(true);
    client.SetReplayMode(false);
    ASSERT_THAT(server.RequestLines(), ElementsAre(kInfo, "PUT /replay/playback", "PUT /replay/playback"));
    EXPECT_EQ(server.Requests()[1].body, R"({"enabled":true})");
    EXPECT_EQ(server.Requests()[2].body, R"({"enabled":false})");
    EXPECT_EQ(server.Requests()[2].Field("Content-Type"), "application/json");
}

TEST(OstraSdkClient, failsToReadAReplayModeThatIsNotTrueOrFalse) {
    for (const char* const text :
         {"", "{}", "[]", "true", R"({"enabled":1})", R"({"enabled":"true"})", R"({"enabled":null})",
          R"({"Enabled":true})", R"({"enabled":tru)", R"({"enabled":true)", R"({"enabled":true}x)"}) {
        SCOPED_TRACE(text);
        const ScriptedServer server(WillingExcept("/replay/playback", JsonReply(text)));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectReplayModeFails(client);
    }
}

TEST(OstraSdkClient, failsToReadTheReplayModeOfAServerThatRefusesOrBreaksOff) {
    ScriptedReply cut = JsonReply(R"({"enabled":true})");
    cut.cutAfter = cut.bytes.size() - 1;
    for (const ScriptedReply& reply : {HttpReply(404, "application/json", R"({"enabled":true})"),
                                       HttpReply(500, "application/json", R"({"enabled":true})"), cut}) {
        const ScriptedServer server(WillingExcept("/replay/playback", reply));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectReplayModeFails(client);
    }
}

TEST(OstraSdkClient, failsToSetTheReplayModeOfAServerThatRefuses) {
    for (const int status : {404, 405, 500}) {
        const ScriptedServer server(
            WillingExcept("/replay/playback", HttpReply(status, "application/json", "{}")));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        ExpectThrown([&] { client.SetReplayMode(true); }, -998, "OstraSdkClient::SetReplayMode",
                     "Failed to set the replay mode.");
    }
}

TEST(OstraSdkClient, givesUpOnTheReplayModeOfASilentServerAfterThreeSeconds) {
    const ScriptedServer server(WillingExcept("/replay/playback", SilentReply()));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const auto start = std::chrono::steady_clock::now();
    ExpectReplayModeFails(client);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken.count(), 2.9);
    EXPECT_LT(taken.count(), 6);
}

// Reading a file

TEST(ReadFileBuffer, replacesTheBufferByTheCompleteFile) {
    const TemporaryFolder folder;
    WriteFile("a", std::string("a\0b\r\n\x1A\xFF", 7));
    std::vector<std::uint8_t> buffer(100, 1);
    OstraSdkClient::ReadFileBuffer("a", buffer);
    EXPECT_THAT(buffer, ElementsAre('a', 0, 'b', '\r', '\n', 0x1A, 0xFF));
}

TEST(ReadFileBuffer, reportsAnEmptyFile) {
    const TemporaryFolder folder;
    WriteFile("a", "");
    std::vector<std::uint8_t> buffer;
    ExpectThrown([&] { OstraSdkClient::ReadFileBuffer("a", buffer); }, -997, "ReadFileBuffer", "a is empty.");
}

TEST(ReadFileBuffer, reportsAFileThatItCannotOpen) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    std::vector<std::uint8_t> buffer;
    for (const std::string name : {"missing %s", "folder", ""})
        ExpectThrown([&] { OstraSdkClient::ReadFileBuffer(name, buffer); }, -997, "ReadFileBuffer",
                     "Failed to open " + name + ".");
}

TEST(ReadFileBuffer, failsForAFileTooLargeForARequest) {
    const TemporaryFolder folder;
    WriteFile("huge", "a");
    std::error_code error;
    std::filesystem::resize_file("huge", (1ULL << 32U) + 1, error);
    if (error)
        GTEST_SKIP() << "this file system has no files of 4 GB";
    std::vector<std::uint8_t> buffer;
    LogCapture log;
    ExpectThrown([&] { OstraSdkClient::ReadFileBuffer("huge", buffer); }, -997, "ReadFileBuffer",
                 "Failed to open huge.");
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to open huge. - it has 4294967297 bytes, and a request "
                            "carries no more than 4 GiB"));
}

TEST(OstraSdkClient, logsWhyItFailed) {
    const TemporaryFolder folder;
    const ScriptedServer server(
        WillingExcept("/system/commands/archive",
                      HttpReply(500, "application/json", R"({"error":"The workspace cannot be read."})")));
    OstraSdkClient client;
    LogCapture log;
    EXPECT_THROW(client.Connect("127.0.0.1", ClosedPort()), Ve::Exception);
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to connect the OstraServer (127.0.0.1). - Connection refused"));
    client.Connect("127.0.0.1", server.Port());
    EXPECT_THROW(client.Backup("Ostra.osbak"), Ve::Exception);
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to call the Backup request. - The server answered 500: "
                            "The workspace cannot be read."));
    std::vector<std::uint8_t> buffer;
    EXPECT_THROW(OstraSdkClient::ReadFileBuffer("missing", buffer), Ve::Exception);
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Failed to open missing. - No such file or directory"));
    const ScriptedServer good(WillingReplies());
    client.Connect("127.0.0.1", good.Port());
    EXPECT_THROW(client.Backup("missing/Ostra.osbak"), Ve::Exception);
    EXPECT_THAT(
        log.Lines(),
        ElementsAre("INFO: Failed to open the file - missing/Ostra.osbak - No such file or directory"));
    client.Disconnect();
    EXPECT_THAT(log.Lines(), IsEmpty());
}

// Discovery

TEST(OstraSdkClient, listsServersInTheOrderOfTheirAnswers) {
    const DiscoveryResponder responder(
        {DiscoveryAnswer(2, "10.0.0.9", 3600), DiscoveryAnswer(1, "192.168.100.200", 65535)},
        std::chrono::milliseconds(20));
    setenv("OSTRA_DISCOVERY", responder.Target().c_str(), 1);
    std::vector<OstraServerInfo> list(3);
    OstraSdkClient::DiscoverOstraServers(list);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].address, "10.0.0.9");
    EXPECT_EQ(list[0].controlPort, 3600U);
    EXPECT_EQ(list[1].address, "192.168.100.200");
    EXPECT_EQ(list[1].controlPort, 65535U);
}

TEST(OstraSdkClient, findsNoServerWithoutAnError) {
    setenv("OSTRA_DISCOVERY", "127.0.0.1:9", 1);
    std::vector<OstraServerInfo> list(3);
    OstraSdkClient::DiscoverOstraServers(list);
    EXPECT_THAT(list, IsEmpty());
}

} // namespace
