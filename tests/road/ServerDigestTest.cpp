#include "ServerTest.h"

#include "SlowCrc32c.h"
#include "wire/ContentDigest.h"

#include <string>

namespace {

class ServerDigest : public ServerTest {
  protected:
    /// A restore whose head has these further fields.
    [[nodiscard]] unsigned RestoreWith(const std::string& fields, const std::string& body) const {
        std::string text = RawHttp::Text("POST", kRestorePath, body, "application/cbor");
        text.insert(text.find("\r\n") + 2, fields);
        RawHttp connection(server.ControlPort());
        connection.Send(text);
        return connection.Read().status;
    }

    const OstraServerProcess server{Served()};
    const std::string body = RestoreBody(Backup(changed));
    const std::string digest = "Content-Digest: " + ContentDigest(independent::SlowCrc32c(body)) + "\r\n";
    const std::string wish = "Want-Content-Digest: crc32c=1\r\n";
};

TEST_F(ServerDigest, aRequestWithTheRightDigestIsCarriedOut) {
    EXPECT_EQ(RestoreWith(digest, body), 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

TEST_F(ServerDigest, aFlippedBitInAFilesContentChangesNothing) {
    std::string damaged = body;
    const std::size_t content = damaged.find("second");
    ASSERT_NE(content, std::string::npos);
    damaged[content] = static_cast<char>(damaged[content] ^ 1);
    EXPECT_EQ(RestoreWith(digest, damaged), 400U);
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(RestoreWith("", damaged), 200U); // nothing else would have told
}

TEST_F(ServerDigest, aDamagedRequestIsNotBlamedOnItsArchive) {
    std::string damaged = body;
    const std::size_t header = damaged.find("workspaces");
    ASSERT_NE(header, std::string::npos);
    damaged[header] = static_cast<char>(damaged[header] ^ 1);
    EXPECT_EQ(RestoreWith(digest, damaged), 400U);
    EXPECT_EQ(RestoreWith("", damaged), 422U);
    EXPECT_EQ(TreeOf(Served()), original);
}

TEST_F(ServerDigest, ofSeveralDigestsEachMustFit) {
    EXPECT_EQ(RestoreWith(digest + "Content-Digest: crc32c=:AAAAAA==:\r\n", body), 400U);
    EXPECT_EQ(TreeOf(Served()), original);
}

TEST_F(ServerDigest, whoAsksForDigestsSendsThemToo) {
    EXPECT_EQ(RestoreWith(wish, body), 400U);
    EXPECT_EQ(RestoreWith(wish + "Content-Digest: sha-256=:AA==:\r\n", body), 400U);
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(RestoreWith(wish + digest, body), 200U);
}

TEST_F(ServerDigest, whoDoesNotAskGetsALengthAndNoDigest) {
    const RawHttp::Reply reply = Archive(server);
    EXPECT_TRUE(reply.Whole());
    EXPECT_EQ(reply.head.find("Digest"), std::string::npos);
}

TEST_F(ServerDigest, theDigestStandsBehindTheChunksOfTheReply) {
    RawHttp connection(server.ControlPort());
    connection.Send("GET /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\n" + wish + "\r\n");
    const RawHttp::Reply reply = connection.Read();
    EXPECT_NE(reply.head.find("Transfer-Encoding: chunked\r\n"), std::string::npos);
    EXPECT_NE(reply.head.find("Trailer: Content-Digest\r\n"), std::string::npos);
    const std::string json = R"({"enabled":false})";
    EXPECT_EQ(reply.body, "11\r\n" + json + "\r\n0\r\nContent-Digest: " +
                              ContentDigest(independent::SlowCrc32c(json)) + "\r\n\r\n");
}

TEST_F(ServerDigest, behindTheDigestTheConnectionServesOn) {
    RawHttp connection(server.ControlPort());
    for (int request = 0; request < 3; ++request) {
        connection.Send("GET /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\n" + wish + "\r\n");
        const RawHttp::Reply reply = connection.Read();
        EXPECT_NE(reply.body.find("Content-Digest: "), std::string::npos);
        EXPECT_NE(reply.head.find("Connection: keep-alive\r\n"), std::string::npos);
    }
}

TEST_F(ServerDigest, aClientOfAnOlderHttpGetsNoChunks) {
    RawHttp connection(server.ControlPort());
    connection.Send("GET /replay/playback HTTP/1.0\r\n" + wish + "\r\n");
    const RawHttp::Reply reply = connection.Read();
    EXPECT_EQ(reply.status, 200U);
    EXPECT_TRUE(reply.Whole());
}

} // namespace
