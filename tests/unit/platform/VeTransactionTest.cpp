#include "ostrasdk/VeRestClient.h"

#include "LoopbackSocket.h"
#include "ScriptedServer.h"
#include "ThrownBy.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/ContentDigest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using OstraSdk::VeJson;
using OstraSdk::VeRestClient;
using OstraSdk::VeTransaction;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr std::int64_t kPlenty = 20'000'000;
constexpr std::int64_t kShort = 300'000;

VeRestClient ClientOf(unsigned int port) {
    bIpAddress address;
    bIpAddress_Parse(&address, "127.0.0.1");
    return {address, port};
}

/// The value of one GET.
VeJson Get(unsigned int port, std::int64_t timeout = kPlenty) {
    return ClientOf(port).Read("/a", VeJson(), VeJson()).GetResponse(timeout).Payload();
}

int StatusOf(const ScriptedReply& reply) {
    const ScriptedServer server(reply);
    return ThrownBy([&] { Get(server.Port()); }).Status();
}

/// A reply of exactly these bytes.
ScriptedReply Raw(const std::string& bytes) {
    ScriptedReply reply;
    reply.bytes = bytes;
    return reply;
}

/// Checks that a call fails with a time-out, at the right time.
void ExpectTimeout(const std::function<void()>& call, std::chrono::milliseconds timeout) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ThrownBy(call).Status(), bERROR_TIMEOUT);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, timeout);
    EXPECT_LT(taken, timeout + 2s);
}

// Requests

TEST(VeTransaction, sendsEachOperationUnderItsVerb) {
    const ScriptedServer server(JsonReply("{}"));
    const VeRestClient client = ClientOf(server.Port());
    const VeJson body = VeJson::ParseString(R"({"a":1})");
    client.Call("/call", body, VeJson()).CheckResponse(kPlenty);
    client.Read("/read", VeJson(), VeJson()).CheckResponse(kPlenty);
    client.Update("/update", body, VeJson()).CheckResponse(kPlenty);
    EXPECT_THAT(server.RequestLines(), ElementsAre("POST /call", "GET /read", "PUT /update"));
}

TEST(VeTransaction, sendsACompleteHttpRequest) {
    const ScriptedServer server(JsonReply("{}"));
    ClientOf(server.Port()).Call("/a", VeJson::ParseString(R"({"a":1})"), VeJson()).CheckResponse(kPlenty);
    const ScriptedRequest request = server.Requests().at(0);
    EXPECT_THAT(request.head, testing::StartsWith("POST /a HTTP/1.1\r\n"));
    EXPECT_EQ(request.Field("Host"), "127.0.0.1:" + std::to_string(server.Port()));
    EXPECT_EQ(request.Field("Connection"), "close");
    EXPECT_EQ(request.Field("Content-Type"), "application/json");
    EXPECT_EQ(request.Field("Content-Length"), "7");
    EXPECT_EQ(request.body, R"({"a":1})");
}

TEST(VeTransaction, sendsItsBodysDigestAndRequestsTheReplys) {
    const ScriptedServer server(JsonReply("{}"));
    VeJson body;
    body.Set("data", VeJson::Bytes{'1', '2', '3'});
    const VeRestClient client = ClientOf(server.Port());
    client.Call("/a", body, VeJson()).CheckResponse(kPlenty);
    client.Read("/a", VeJson(), VeJson()).CheckResponse(kPlenty);
    const ScriptedRequest withBody = server.Requests().at(0);
    Crc32c checksum;
    checksum.Take(withBody.body.data(), withBody.body.size());
    EXPECT_EQ(withBody.Field("Content-Digest"), ContentDigest(checksum.Value()));
    EXPECT_EQ(withBody.Field("Want-Content-Digest"), "crc32c=1");
    EXPECT_EQ(server.Requests().at(1).Field("Content-Digest"), "");
    EXPECT_EQ(server.Requests().at(1).Field("Want-Content-Digest"), "crc32c=1");
}

TEST(VeTransaction, sendsNoBodyForTheEmptyValue) {
    const ScriptedServer server(JsonReply("{}"));
    const VeRestClient client = ClientOf(server.Port());
    client.Read("/a", VeJson(), VeJson()).CheckResponse(kPlenty);
    client.Call("/a", VeJson(), VeJson()).CheckResponse(kPlenty);
    EXPECT_EQ(server.Requests().at(0).Field("Content-Length"), "");
    EXPECT_EQ(server.Requests().at(0).Field("Content-Type"), "");
    EXPECT_EQ(server.Requests().at(1).Field("Content-Length"), "0");
}

/// A reply in one chunk of 7 bytes, followed by these lines.
std::string Chunked(const std::string& announced, const std::string& body, const std::string& trailer) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n" + announced +
           "\r\n7\r\n" + body + "\r\n0\r\n" + trailer + "\r\n";
}

/// The same with a length.
std::string Sized(const std::string& fields, const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 7\r\n" + fields + "\r\n" +
           body;
}

// The digest of {"a":1}, and of no other body used here.
const std::string kDigestLine = "Content-Digest: " + ContentDigest(0xCFF7D56AU) + "\r\n";
const std::string kAnnounced = "Trailer: Content-Digest\r\n";

TEST(VeTransaction, acceptsAReplyWithTheRightDigest) {
    for (const std::string& bytes :
         {Sized(kDigestLine, R"({"a":1})"), Sized("", R"({"a":1})"),
          Sized("Content-Digest: sha-256=:AA==:\r\n", R"({"a":1})"),
          Chunked(kAnnounced, R"({"a":1})", kDigestLine), Chunked("", R"({"a":1})", kDigestLine),
          Chunked("", R"({"a":1})", ""), Chunked("Trailer: Expires\r\n", R"({"a":1})", "")}) {
        const ScriptedServer server(Raw(bytes));
        EXPECT_EQ(Get(server.Port()).At("a").Get<std::int64_t>(), 1) << bytes;
    }
}

TEST(VeTransaction, refusesAReplyWithTheWrongDigest) {
    for (const std::string& bytes :
         {Sized(kDigestLine, R"({"a":2})"), Chunked(kAnnounced, R"({"a":2})", kDigestLine),
          Chunked("", R"({"a":2})", kDigestLine),
          Sized(kDigestLine + "Content-Digest: crc32c=:AAAAAA==:\r\n", R"({"a":1})"),
          Sized("Content-Digest: crc32c=?\r\n", R"({"a":1})")})
        EXPECT_EQ(StatusOf(Raw(bytes)), bERROR_FORMAT) << bytes;
}

TEST(VeTransaction, refusesAReplyWithoutItsAnnouncedDigest) {
    EXPECT_EQ(StatusOf(Raw(Chunked(kAnnounced, R"({"a":1})", ""))), bERROR_FORMAT);
    EXPECT_EQ(StatusOf(Raw(Chunked(kAnnounced, R"({"a":1})", "Content-Digest: sha-256=:AA==:\r\n"))),
              bERROR_FORMAT);
}

TEST(VeTransaction, sendsItsRequestOnce) {
    const ScriptedServer server(JsonReply(R"({"a":1})"));
    VeTransaction transaction = ClientOf(server.Port()).Read("/a", VeJson(), VeJson());
    EXPECT_EQ(transaction.GetResponse(kPlenty).Payload().At("a").Get<std::int64_t>(), 1);
    EXPECT_EQ(transaction.GetResponse(kPlenty).Payload().At("a").Get<std::int64_t>(), 1);
    transaction.CheckResponse(kPlenty);
    EXPECT_EQ(server.Requests().size(), 1U);
}

TEST(VeTransaction, doesNotRepeatACommandThatFailed) {
    const ScriptedServer server(HttpReply(500, "application/json", "{}"));
    VeTransaction transaction = ClientOf(server.Port()).Call("/a", VeJson(), VeJson());
    EXPECT_EQ(ThrownBy([&] { transaction.CheckResponse(kPlenty); }).Status(), bERROR_REFUSED);
    EXPECT_EQ(ThrownBy([&] { transaction.CheckResponse(kPlenty); }).Status(), bERROR_PARAMETER);
    EXPECT_EQ(server.Requests().size(), 1U);
}

TEST(VeTransaction, refusesAPathThatWouldBreakTheRequest) {
    const ScriptedServer server(JsonReply("{}"));
    for (const char* const path : {"", "a", "/a b", "/a\r\nX: y", "/\xFF", "/a\n"})
        EXPECT_EQ(ThrownBy([&] {
                      ClientOf(server.Port()).Read(path, VeJson(), VeJson()).CheckResponse(kPlenty);
                  }).Status(),
                  bERROR_PARAMETER);
    EXPECT_TRUE(server.Requests().empty());
}

TEST(VeTransaction, refusesAnExtraValue) {
    EXPECT_EQ(ThrownBy([] {
                  static_cast<void>(ClientOf(1).Call("/a", VeJson(), VeJson::ParseString("{}")));
              }).Status(),
              bERROR_PARAMETER);
}

// Replies

TEST(VeTransaction, returnsTheValueOfAReply) {
    const ScriptedServer text(JsonReply(R"({"a":[1,2]})"));
    EXPECT_TRUE(Get(text.Port()).Has("a"));
    const ScriptedServer bytes(DataReply("abc"));
    EXPECT_EQ(Get(bytes.Port()).At("data").GetBinary(), (VeJson::Bytes{'a', 'b', 'c'}));
}

TEST(VeTransaction, readsAnEmptyBodyAsAnEmptyValue) {
    const ScriptedServer server(HttpReply(200, "application/json", ""));
    EXPECT_TRUE(Get(server.Port()).IsEmpty());
}

TEST(VeTransaction, readsAReplyThatArrivesByteByByte) {
    ScriptedReply reply = DataReply("abc");
    reply.pieceSize = 1;
    const ScriptedServer server(reply);
    EXPECT_EQ(Get(server.Port()).At("data").GetBinary().size(), 3U);
}

TEST(VeTransaction, readsAReplyWithoutALengthToTheEnd) {
    const ScriptedServer server(
        Raw("HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n\r\n" + CborDataHead(3) + "abc"));
    EXPECT_EQ(Get(server.Port()).At("data").GetBinary().size(), 3U);
}

TEST(VeTransaction, readsAChunkedReply) {
    const std::string head =
        "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
    const ScriptedServer server(Raw(head + "3\r\n{\"a\r\n4;x=y\r\n\":1}\r\n0\r\n\r\n"));
    EXPECT_EQ(Get(server.Port()).At("a").Get<std::int64_t>(), 1);
    EXPECT_EQ(StatusOf(Raw(head + "3\r\n{\"a\r\n4\r\n\":1}\r\n")), bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(head + "FFFFFFFFFFFFFFFF\r\n{}")), bERROR_LIMIT);
    EXPECT_EQ(StatusOf(Raw(head + "FFFFFFFFFFFFFFFFF\r\n{}")), bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(head + "-1\r\n{}")), bERROR_CONNECTION);
}

TEST(VeTransaction, failsForATruncatedReply) {
    const ScriptedReply complete = DataReply("abcdefgh");
    for (std::uint64_t size = 0; size < complete.bytes.size(); ++size) {
        ScriptedReply cut = complete;
        cut.cutAfter = size;
        EXPECT_EQ(StatusOf(cut), bERROR_CONNECTION) << size;
    }
}

TEST(VeTransaction, failsForContradictoryLengths) {
    const std::string start = "HTTP/1.1 200 OK\r\n";
    EXPECT_EQ(StatusOf(Raw(start + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{} ")), bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(start + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}")),
              bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(start + "Transfer-Encoding: chunked\r\nContent-Length: 2\r\n\r\n{}")),
              bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(start + "Content-Length: two\r\n\r\n{}")), bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(Raw(start + "Content-Length: \r\n\r\n{}")), bERROR_CONNECTION);
    EXPECT_EQ(StatusOf(HttpReply(200, "application/cbor", CborDataHead(4) + "abc")), bERROR_FORMAT);
    EXPECT_EQ(StatusOf(HttpReply(200, "application/cbor", CborDataHead(2) + "abc")), bERROR_FORMAT);
}

TEST(VeTransaction, failsImmediatelyForALengthBeyondTheLimit) {
    ScriptedReply reply = Raw("HTTP/1.1 200 OK\r\nContent-Length: 10000000000\r\n\r\n{}");
    reply.closes = false;
    EXPECT_EQ(StatusOf(reply), bERROR_LIMIT);
}

TEST(VeTransaction, failsForATextBeyondItsLimit) {
    EXPECT_EQ(StatusOf(JsonReply("[\"" + std::string(std::size_t{1024} * 1024, 'a') + "\"]")), bERROR_LIMIT);
    ScriptedReply endless = Raw("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n");
    endless.filler = 1ULL << 40U;
    EXPECT_EQ(StatusOf(endless), bERROR_LIMIT);
}

TEST(VeTransaction, failsForAHeaderWithoutEnd) {
    ScriptedReply endless = Raw("HTTP/1.1 200 OK\r\nX: ");
    endless.filler = 1ULL << 40U;
    EXPECT_EQ(StatusOf(endless), bERROR_CONNECTION);
}

TEST(VeTransaction, failsForAnythingButHttp) {
    for (const std::string bytes : {"", "\r\n", "hello", "HTTP/1.1\r\n\r\n", "HTTP/9.9 200 OK\r\n\r\n{}",
                                    "HTTP/1.1 2000 OK\r\n\r\n{}", "SSH-2.0-x\r\n", "GET / HTTP/1.1\r\n\r\n"})
        EXPECT_EQ(StatusOf(Raw(bytes)), bERROR_CONNECTION) << bytes;
    EXPECT_EQ(StatusOf(Raw(std::string(1000, '\0'))), bERROR_CONNECTION);
}

TEST(VeTransaction, failsForEveryStatusButTwoHundred) {
    for (const int status : {201, 204, 206, 301, 304, 400, 404, 500, 503, 999})
        EXPECT_EQ(StatusOf(HttpReply(status, "application/json", R"({"a":1})")), bERROR_REFUSED) << status;
}

TEST(VeTransaction, skipsInterimResponses) {
    const std::string final = JsonReply(R"({"a":1})").bytes;
    for (const std::string before :
         {"HTTP/1.1 100 Continue\r\n\r\n", "HTTP/1.1 102 Processing\r\nA: b\r\n\r\n",
          "HTTP/1.1 100 \r\n\r\nHTTP/1.1 199 \r\nContent-Length: 5\r\n\r\n"}) {
        const ScriptedServer server(Raw(before + final));
        EXPECT_EQ(Get(server.Port()).At("a").Get<std::int64_t>(), 1) << before;
        EXPECT_EQ(StatusOf(Raw(before)), bERROR_CONNECTION) << before;
    }
    std::string endless;
    for (int i = 0; i < 1000; ++i)
        endless += "HTTP/1.1 100 Continue\r\n\r\n";
    EXPECT_EQ(StatusOf(Raw(endless + final)), bERROR_LIMIT);
}

TEST(VeTransaction, reportsTheMessageOfAServerThatRefuses) {
    const ScriptedServer server(HttpReply(422, "application/json", R"({"error":"not %s this one"})"));
    EXPECT_STREQ(ThrownBy([&] { Get(server.Port()); }).what(), "The server answered 422: not %s this one");
    const ScriptedServer silent(HttpReply(500, "text/html", "<html>"));
    EXPECT_STREQ(ThrownBy([&] { Get(silent.Port()); }).what(), "The server answered 500: no reason given");
}

TEST(VeTransaction, acceptsTheReplyOfAServerThatDoesNotReadTheRequest) {
    ScriptedReply reply = HttpReply(413, "application/json", R"({"error":"too large"})");
    reply.closes = false;
    ScriptedServer server(reply);
    server.LeaveBodiesUnread();
    VeJson body;
    body.Set("data", VeJson::Bytes(50'000'000, 'x'));
    const auto start = std::chrono::steady_clock::now();
    const Ve::Exception e =
        ThrownBy([&] { ClientOf(server.Port()).Call("/a", body, VeJson()).CheckResponse(kPlenty); });
    EXPECT_EQ(e.Status(), bERROR_REFUSED);
    EXPECT_THAT(e.what(), HasSubstr("too large"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST(VeTransaction, failsWhenTheServerSucceedsBeforeTheCompleteRequest) {
    ScriptedReply reply = JsonReply("{}");
    reply.closes = false;
    ScriptedServer server(reply);
    server.LeaveBodiesUnread();
    VeJson body;
    body.Set("data", VeJson::Bytes(50'000'000, 'x'));
    const Ve::Exception e =
        ThrownBy([&] { ClientOf(server.Port()).Call("/a", body, VeJson()).CheckResponse(kPlenty); });
    EXPECT_EQ(e.Status(), bERROR_CONNECTION);
    EXPECT_THAT(e.what(), HasSubstr("before it had the complete request"));
}

// Time-outs

TEST(VeTransaction, keepsItsTimeoutWithASilentServer) {
    const ScriptedServer server(SilentReply());
    ExpectTimeout([&] { Get(server.Port(), kShort); }, 300ms);
}

TEST(VeTransaction, keepsItsTimeoutWithAServerThatSendsSlowly) {
    ScriptedReply reply = JsonReply("{}");
    reply.pieceSize = 1;
    reply.pause = 30ms;
    const ScriptedServer head(reply);
    ExpectTimeout([&] { Get(head.Port(), kShort); }, 300ms);
    ScriptedReply body =
        Raw("HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n\r\n" + CborDataHead(10'000'000));
    body.filler = 10'000'000;
    body.pieceSize = 100;
    body.pause = 5ms;
    const ScriptedServer dripping(body);
    ExpectTimeout([&] { Get(dripping.Port(), kShort); }, 300ms);
}

TEST(VeTransaction, keepsItsTimeoutWithAServerThatStopsHalfWay) {
    const ScriptedReply complete = DataReply(std::string(1'000'000, 'x'));
    for (const std::uint64_t tenth : {1U, 5U, 9U}) {
        ScriptedReply half = complete;
        half.cutAfter = complete.bytes.size() * tenth / 10;
        half.closes = false;
        const ScriptedServer server(half);
        ExpectTimeout([&] { Get(server.Port(), kShort); }, 300ms);
    }
}

TEST(VeTransaction, keepsItsTimeoutWithAServerThatNeverStopsSending) {
    ScriptedReply endless =
        Raw("HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n\r\n" + CborDataHead(1ULL << 30U));
    endless.filler = 1ULL << 40U;
    endless.pieceSize = 1000;
    endless.pause = 1ms;
    const ScriptedServer server(endless);
    ExpectTimeout([&] { Get(server.Port(), kShort); }, 300ms);
}

TEST(VeTransaction, keepsItsTimeoutWithAServerThatDoesNotReadTheRequest) {
    const LoopbackSocket listener; // the request only fills the buffers
    listener.Listen(1);
    VeJson body;
    body.Set("data", VeJson::Bytes(50'000'000, 'x'));
    ExpectTimeout([&] { ClientOf(listener.Port()).Call("/a", body, VeJson()).CheckResponse(kShort); }, 300ms);
}

TEST(VeTransaction, keepsItsTimeoutWhileConnecting) {
    const LoopbackSocket listener; // a full queue answers no further connection
    listener.Listen(0);
    std::vector<int> waiting;
    for (int i = 0; i < 3; ++i) {
        waiting.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        static_cast<void>(connect(waiting.back(), reinterpret_cast<const sockaddr*>(&listener.Address()),
                                  sizeof listener.Address()));
    }
    ExpectTimeout([&] { Get(listener.Port(), kShort); }, 300ms);
    ExpectTimeout([&] { Get(listener.Port(), kPlenty); }, 5000ms);
    for (const int descriptor : waiting)
        close(descriptor);
}

TEST(VeTransaction, failsImmediatelyWithoutTime) {
    const ScriptedServer server(SilentReply());
    ExpectTimeout([&] { Get(server.Port(), 0); }, 0ms);
    ExpectTimeout([&] { Get(server.Port(), -1); }, 0ms);
    ExpectTimeout([&] { Get(server.Port(), INT64_MIN); }, 0ms);
}

TEST(VeTransaction, acceptsTheMaximumTimeout) {
    const ScriptedServer server(JsonReply("{}"));
    EXPECT_TRUE(Get(server.Port(), INT64_MAX).IsObject());
}

} // namespace
