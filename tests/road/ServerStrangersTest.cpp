#include "ServerTest.h"

#include "ThrownBy.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "link/OstraSdkClient.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gmock/gmock.h>

// Who may use the server: editors, and no web page that a visitor's browser was led to.

namespace {

using testing::HasSubstr;

class ServerStrangers : public ServerTest {
  protected:
    ~ServerStrangers() override { unsetenv("OSTRA_TOKEN_FILE"); }

    /// A restore with these fields in place of the usual host.
    [[nodiscard]] unsigned Restore(const OstraServerProcess& server, const std::string& fields) const {
        std::string request =
            RawHttp::Text("POST", kRestorePath, RestoreBody(Backup(changed)), "application/cbor");
        const std::string host = "Host: 127.0.0.1\r\n";
        request.replace(request.find(host), host.size(), fields);
        RawHttp http(server.ControlPort());
        http.Send(request);
        return http.Read().status;
    }
    void ExpectRefused(const OstraServerProcess& server, unsigned status, const std::string& fields) const {
        EXPECT_EQ(Restore(server, fields), status) << fields;
        EXPECT_EQ(TreeOf(Served()), original) << fields;
    }
    /// Writes the token file. @return its path
    [[nodiscard]] std::string TokenFile(const std::string& content) const {
        WriteFile(folder.Path("token"), content);
        return folder.Path("token");
    }
};

TEST_F(ServerStrangers, aHostThatIsNoAddressIsRefused) {
    const OstraServerProcess server(Served());
    for (const std::string host : {"evil.example", "evil.example:3600", "localhost", "127.0.0.1.evil.example",
                                   "x127.0.0.1", "[::1", "[::1]x", "[", "[evil]:80", "", "127.0.0.1@evil"})
        ExpectRefused(server, 403, "Host: " + host + "\r\n");
    ExpectRefused(server, 400, "");
    ExpectRefused(server, 400, "Host: 127.0.0.1\r\nHost: 127.0.0.1\r\n");
}

TEST_F(ServerStrangers, anyAddressIsAHost) {
    const OstraServerProcess server(Served());
    for (const std::string host : {"127.0.0.1", "127.0.0.1:3600", "10.0.0.7:1", "[::1]:3600", "[fe80::1]"}) {
        MakeTree(Served(), original);
        EXPECT_EQ(Restore(server, "Host: " + host + "\r\n"), 200U) << host;
        EXPECT_EQ(TreeOf(Served()), changed) << host;
    }
}

TEST_F(ServerStrangers, aNameThatTheServerWasGivenIsAHost) {
    const OstraServerProcess server(Served(), {"--host-name", "Station-One", "--host-name", "station.local"});
    EXPECT_EQ(Restore(server, "Host: station-one:3600\r\n"), 200U);
    EXPECT_EQ(Restore(server, "Host: STATION.LOCAL\r\n"), 200U);
    EXPECT_EQ(Restore(server, "Host: station\r\n"), 403U);
}

TEST_F(ServerStrangers, aRequestOfAWebPageIsRefused) {
    const OstraServerProcess server(Served());
    for (const std::string origin : {"http://evil.example", "null", "http://127.0.0.1:3600", ""})
        ExpectRefused(server, 403, "Host: 127.0.0.1\r\nOrigin: " + origin + "\r\n");
    RawHttp http(server.ControlPort());
    http.Send(
        "OPTIONS /system/commands/restore HTTP/1.1\r\nHost: 127.0.0.1\r\nOrigin: http://evil.example\r\n"
        "Access-Control-Request-Method: POST\r\n\r\n");
    const RawHttp::Reply reply = http.Read();
    EXPECT_EQ(reply.status, 403U);
    EXPECT_THAT(reply.head, testing::Not(HasSubstr("Access-Control")));
}

TEST_F(ServerStrangers, aCommandWithoutAContentTypeIsRefused) {
    const OstraServerProcess server(Served());
    const auto post = [&](const std::string& fields) {
        RawHttp http(server.ControlPort());
        http.Send("POST " + std::string(kArchivePath) +
                  " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 32\r\n" + fields + "\r\n" + kArchiveBody);
        return http.Read().status;
    };
    EXPECT_EQ(post(""), 400U);
    for (const std::string type : {"text/plain", "application/x-www-form-urlencoded", "multipart/form-data"})
        EXPECT_EQ(post("Content-Type: " + type + "\r\n"), 400U) << type;
    EXPECT_EQ(post("Content-Type: application/json\r\nContent-Type: application/json\r\n"), 400U);
    EXPECT_EQ(post("Content-Type: application/json\r\n"), 200U);
}

TEST_F(ServerStrangers, anUnknownTransferCodingIs501AndCloses) {
    const OstraServerProcess server(Served());
    for (const std::string coding : {"gzip", "identity", "gzip, chunked", "chunked, gzip", "xchunked"}) {
        RawHttp http(server.ControlPort());
        http.Send("PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\nTransfer-Encoding: " + coding +
                  "\r\n\r\nGET /system/info HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
        EXPECT_EQ(http.Read().status, 501U) << coding;
        EXPECT_TRUE(http.Closed()) << coding;
    }
}

TEST_F(ServerStrangers, withATokenNothingIsDoneWithoutIt) {
    const OstraServerProcess server(Served(), {"--token-file", TokenFile("se-cret.1\nnot this line\n")});
    const std::string host = "Host: 127.0.0.1\r\n";
    ExpectRefused(server, 401, host);
    for (const std::string value :
         {"Bearer", "Bearer ", "Bearer se-cret.", "Bearer se-cret.10", "Bearer Se-cret.1", "se-cret.1",
          "Basic se-cret.1", "Bearer not this line", " "})
        ExpectRefused(server, 401, host + "Authorization: " + value + "\r\n");
    const RawHttp::Reply reply = RawHttp::Request(server.ControlPort(), "GET", "/system/info");
    EXPECT_EQ(reply.status, 401U);
    EXPECT_THAT(reply.head, HasSubstr("WWW-Authenticate: Bearer\r\n"));
    EXPECT_EQ(Restore(server, host + "Authorization: Bearer se-cret.1\r\n"), 200U);
}

TEST_F(ServerStrangers, aTokenFileThatIsNoneEndsTheStart) {
    const std::vector<std::string> unusable = {"", "\n", "two words\n", "tab\t\n", std::string(1001, 'a')};
    for (const std::string& content : unusable)
        EXPECT_THROW(OstraServerProcess(Served(), {"--token-file", TokenFile(content)}), std::runtime_error);
    EXPECT_THROW(OstraServerProcess(Served(), {"--token-file", folder.Path("missing")}), std::runtime_error);
    EXPECT_NO_THROW(OstraServerProcess(Served(), {"--token-file", TokenFile(std::string(1000, 'a'))}));
}

TEST_F(ServerStrangers, theEditorBringsTheTokenThatItWasGiven) {
    const OstraServerProcess server(Served(), {"--token-file", TokenFile("secret\n")});
    OstraSdkClient client;
    EXPECT_EQ(ThrownBy([&] { client.Connect("127.0.0.1", server.ControlPort()); }).Status(), bERROR_REFUSED);
    setenv("OSTRA_TOKEN_FILE", TokenFile("secret\r\n").c_str(), 1);
    client.Connect("127.0.0.1", server.ControlPort());
    client.SetReplayMode(true);
    EXPECT_TRUE(client.GetReplayMode());
    client.Backup("Ostra.osbak");
    client.Restore("Ostra.osbak");
    setenv("OSTRA_TOKEN_FILE", TokenFile("other").c_str(), 1);
    EXPECT_EQ(ThrownBy([&] { client.SetReplayMode(false); }).Status(), bERROR_REQUEST);
    setenv("OSTRA_TOKEN_FILE", folder.Path("missing").c_str(), 1);
    const Ve::Exception failure = ThrownBy([&] { client.Connect("127.0.0.1", server.ControlPort()); });
    EXPECT_THAT(failure.Reason(), HasSubstr("No such file or directory"));
}

} // namespace
