#include "HostileMessages.h"

#include "OstraServerProcess.h"
#include "RawHttp.h"
#include "ScriptedServer.h"
#include "TemporaryFolder.h"
#include "basalt/Exception.h"
#include "link/OstraSdkClient.h"
#include "ostrasdk/VeInstance.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

namespace {

namespace fs = std::filesystem;

/// The message of the client's failed backup; empty when it succeeds.
std::string Backup(OstraSdkClient& client) {
    try {
        client.Backup("backup.osbak");
        return "";
    } catch (const Ve::Exception& failure) {
        return std::to_string(failure.Status()) + " " + failure.what();
    }
}

TEST(HostileReplies, areRefusedAndTheNextOneIsAccepted) {
    const TemporaryFolder folder;
    std::string bytes;
    ScriptedServer server([&bytes](const ScriptedRequest& request) {
        if (request.path != "/system/commands/archive")
            return JsonReply("{}");
        ScriptedReply reply;
        reply.bytes = bytes;
        return reply;
    });
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    for (const HostileReply& reply : HostileReplies()) {
        SCOPED_TRACE(reply.name);
        bytes = reply.bytes;
        EXPECT_EQ(Backup(client), "-998 Failed to call the Backup request.");
        EXPECT_FALSE(fs::exists("backup.osbak"));
    }
    bytes = DataReply("complete").bytes;
    EXPECT_EQ(Backup(client), "");
    EXPECT_EQ(FileContent("backup.osbak"), "complete");
}

std::map<std::string, std::string> Files(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        files[entry.path().string()] = entry.is_regular_file() ? FileContent(entry.path().string()) : "";
    return files;
}

TEST(HostileRequests, areRefusedAndChangeNothing) {
    const TemporaryFolder folder;
    fs::create_directories("served/space/vdk/ContourPath");
    WriteFile("served/space/vdk/ContourPath/a.trk", "a track");
    WriteFile("served/canary", "intact");
    const OstraServerProcess server(folder.Path("served/space"));
    const auto files = Files("served");
    for (const HostileRequest& request : HostileRequests()) {
        SCOPED_TRACE(request.name);
        RawHttp http(server.ControlPort());
        http.Send(request.bytes);
        http.EndSending();
        const RawHttp::Reply reply = http.Read();
        EXPECT_EQ(reply.status, request.status);
        EXPECT_TRUE(reply.IsComplete());
        EXPECT_EQ(Files("served"), files);
    }
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/replay/playback").body, "{\"enabled\":false}");
}

// An HTTP parser with wrong assertions about the arrival of the last chunk would end the program.
const std::string kEmptyChunks =
    "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n";
constexpr std::chrono::milliseconds kBetweenBytes(3);

TEST(HostileReplies, mayArriveByteByByte) {
    ScriptedReply slow;
    slow.bytes = "HTTP/1.1 200 OK\r\n" + kEmptyChunks;
    slow.pieceSize = 1;
    slow.pause = kBetweenBytes;
    ScriptedServer server({{"/system/info", JsonReply("{}")}, {"/replay/playback", slow}});
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    EXPECT_NO_THROW(client.SetReplayMode(true));
}

TEST(HostileRequests, mayArriveByteByByte) {
    const TemporaryFolder folder;
    fs::create_directories("served/vdk/ContourPath");
    const OstraServerProcess server(folder.Path("served"));
    RawHttp http(server.ControlPort());
    for (const char byte : "PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\n" + kEmptyChunks) {
        ASSERT_TRUE(http.Send(std::string(1, byte)));
        std::this_thread::sleep_for(kBetweenBytes);
    }
    EXPECT_EQ(http.Read().status, 400U);
}

TEST(HostileAnswers, areIgnored) {
    for (const HostileAnswer& answer : HostileAnswers()) {
        SCOPED_TRACE(answer.name);
        EXPECT_FALSE(OstraSdk::VeInstance::FromAnswer(answer.bytes).has_value());
    }
}

} // namespace
