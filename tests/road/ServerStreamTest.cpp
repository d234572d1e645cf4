#include "ServerTest.h"

#include <chrono>
#include <thread>

#include <gmock/gmock.h>

// A restore is unpacked while it arrives: nothing that is found later may come too late.

namespace {

const std::string kContents = "\x68"
                              "contents\x81\x6d"
                              "allWorkspaces";

class ServerStream : public ServerTest {
  protected:
    ServerStream() {
        changed["vdk/ContourPath/large.trk"] = std::string(3'000'000, 'L');
        body = RestoreBody(Backup(changed));
        text = RawHttp::Text("POST", kRestorePath, body, "application/cbor");
    }

    /// The member "data" of a restore's body.
    [[nodiscard]] std::string Data() const { return body.substr(1 + kContents.size()); }

    void AwaitUnpacking() const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (Leftovers().find(".ostra-new-") == std::string::npos && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        EXPECT_THAT(Leftovers(), testing::HasSubstr(".ostra-new-"));
    }

    void ExpectNothingChanged() const {
        EXPECT_EQ(TreeOf(Served()), original);
        EXPECT_EQ(Leftovers(), "");
    }

    std::string body;
    std::string text;
};

TEST_F(ServerStream, theNewWorkspaceIsUnpackedBesideWhileItArrives) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    http.Send(text.substr(0, text.size() - 1));
    AwaitUnpacking();
    EXPECT_EQ(TreeOf(Served()), original);
    http.Send(text.substr(text.size() - 1));
    EXPECT_EQ(http.Read().status, 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

TEST_F(ServerStream, aRequestThatEndsInItsArchiveLeavesNothing) {
    const OstraServerProcess server(Served());
    for (const std::size_t missing :
         {std::size_t{1}, std::size_t{600}, body.size() / 2, body.size() - 2000}) {
        SCOPED_TRACE(missing);
        RawHttp http(server.ControlPort());
        http.Send(text.substr(0, text.size() - missing));
        http.EndSending();
        EXPECT_EQ(http.Read().status, 400U);
        ExpectNothingChanged();
    }
}

TEST_F(ServerStream, aRequestThatStopsInItsArchiveLeavesNothing) {
    const OstraServerProcess server(Served(), {"--transfer-timeout", "300"});
    RawHttp http(server.ControlPort());
    http.Send(text.substr(0, text.size() / 2));
    EXPECT_EQ(http.Read().status, 408U);
    ExpectNothingChanged();
}

TEST_F(ServerStream, aMissingPartBehindTheArchiveLeavesNothing) {
    const OstraServerProcess server(Served());
    const auto restore = [&](const std::string& cbor) {
        return RawHttp::Request(server.ControlPort(), "POST", kRestorePath, cbor, "application/cbor").status;
    };
    EXPECT_EQ(restore("\xa1" + Data()), 400U);
    EXPECT_EQ(restore("\xa2" + Data()), 400U);
    EXPECT_EQ(restore("\xa2" + Data() + Data()), 400U);
    EXPECT_EQ(restore("\xa1" + Data() + kContents), 400U);
    ExpectNothingChanged();
    EXPECT_EQ(restore("\xa2" + Data() + kContents), 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

TEST_F(ServerStream, afterARefusedArchiveTheConnectionServesOn) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    const std::string refused = RestoreBody("no archive" + std::string(1'000'000, 'x'));
    http.Send(RawHttp::Text("POST", kRestorePath, refused, "application/cbor"));
    EXPECT_EQ(http.Read().status, 422U);
    ExpectNothingChanged();
    http.Send(text);
    EXPECT_EQ(http.Read().status, 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

TEST_F(ServerStream, aFaultThatWasAskedForUnpacksNothing) {
    const OstraServerProcess server(Served(), {"--fault-status", "507"});
    RawHttp http(server.ControlPort());
    http.Send(text);
    EXPECT_EQ(http.Read().status, 507U);
    ExpectNothingChanged();
}

TEST_F(ServerStream, anArchiveOfALengthThatIsOnlyClaimedIsRefused) {
    const OstraServerProcess server(Served(), {"--request-limit", "100000"});
    const std::string chunked = "POST " + std::string(kRestorePath) +
                                " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/cbor\r\n"
                                "Transfer-Encoding: chunked\r\n\r\n";
    const std::string claim = "\xa2" + kContents + "\x64" + "data\x5a";
    for (const std::string& length :
         {std::string("\x00\x01\x86\xa0", 4), std::string("\xff\xff\xff\xff", 4)}) {
        RawHttp http(server.ControlPort());
        char size[8];
        std::snprintf(size, sizeof(size), "%zx", claim.size() + length.size());
        http.Send(chunked + size + "\r\n" + claim + length + "\r\n0\r\n\r\n");
        EXPECT_EQ(http.Read().status, 400U);
    }
    ExpectNothingChanged();
}

TEST_F(ServerStream, ofTwoRestoresAtOnceTheOneThatIsWholeLastStands) {
    const OstraServerProcess server(Served());
    RawHttp slow(server.ControlPort());
    slow.Send(text.substr(0, text.size() / 2));
    AwaitUnpacking();
    Tree other = original;
    other["vdk/ContourPath/other.trk"] = "other";
    EXPECT_EQ(Restore(server, Backup(other)).status, 200U);
    EXPECT_EQ(TreeOf(Served()), other);
    slow.Send(text.substr(text.size() / 2));
    EXPECT_EQ(slow.Read().status, 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

} // namespace
