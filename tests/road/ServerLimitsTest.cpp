#include "ServerTest.h"

#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace {

class ServerLimits : public ServerTest {
  protected:
    static unsigned StatusOf(const OstraServerProcess& server, const std::string& request) {
        RawHttp http(server.ControlPort());
        http.Send(request);
        return http.Read().status;
    }
    /// A request without its body, which is said to be this long.
    static std::string Head(const std::string& path, const std::string& fields) {
        const bool isTyped = fields.find("Content-Type") != std::string::npos;
        return "POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" +
               (isTyped ? "" : "Content-Type: application/json\r\n") + fields + "\r\n";
    }
    static void ExpectWorks(const OstraServerProcess& server) {
        EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/system/info").status, 200U);
    }
};

TEST_F(ServerLimits, unknownPathsAre404) {
    const OstraServerProcess server(Served());
    for (const std::string path :
         {"/", "/system", "/system/info/", "/system/info?x=1", "/../etc/passwd", "*"})
        EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", path).status, 404U) << path;
}

TEST_F(ServerLimits, wrongVerbsAre405) {
    const OstraServerProcess server(Served());
    for (const std::string verb : {"GET", "PUT", "DELETE", "POSTER"}) {
        EXPECT_EQ(RawHttp::Request(server.ControlPort(), verb, kArchivePath).status, 405U) << verb;
        EXPECT_EQ(RawHttp::Request(server.ControlPort(), verb, kRestorePath).status, 405U) << verb;
    }
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "POST", kReplayPath, "{\"enabled\": true}").status,
              405U);
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "PUT", "/system/info").status, 405U);
}

TEST_F(ServerLimits, aRefusedVerbIsAnsweredWithThoseThatFit) {
    const OstraServerProcess server(Served());
    const auto allowed = [&](const std::string& verb, const std::string& path) {
        const std::string head = RawHttp::Request(server.ControlPort(), verb, path).head;
        const std::size_t start = head.find("\r\nAllow: ");
        return start == std::string::npos ? "none"
                                          : head.substr(start + 9, head.find("\r\n", start + 2) - start - 9);
    };
    EXPECT_EQ(allowed("GET", kArchivePath), "POST");
    EXPECT_EQ(allowed("PUT", kRestorePath), "POST");
    EXPECT_EQ(allowed("DELETE", kReplayPath), "GET, PUT");
    EXPECT_EQ(allowed("POST", "/system/info"), "GET");
    EXPECT_EQ(allowed("GET", "/system/info"), "none");
    EXPECT_EQ(allowed("GET", "/nowhere"), "none");
}

TEST_F(ServerLimits, headIsRefusedWithAHeadAlone) {
    const OstraServerProcess server(Served());
    for (const std::string path : {kArchivePath, "/nowhere"}) {
        for (const std::string fields : {"", "Want-Content-Digest: crc32c=1\r\n"}) {
            SCOPED_TRACE(path + " " + fields);
            const std::string rest = " " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + fields + "\r\n";
            RawHttp get(server.ControlPort());
            get.Send("GET" + rest);
            RawHttp head(server.ControlPort());
            head.Send("HEAD" + rest + RawHttp::Text("GET", kReplayPath));
            EXPECT_EQ(head.ReadHead().head, get.Read().head);
            const RawHttp::Reply next = head.Read();
            EXPECT_EQ(next.status, 200U) << next.head;
            EXPECT_EQ(next.body, R"({"enabled":false})");
        }
    }
}

TEST_F(ServerLimits, bodiesThatCannotBeUnderstoodAre400) {
    const OstraServerProcess server(Served());
    const auto put = [&](const std::string& body, const std::string& type = "application/json") {
        return RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, body, type).status;
    };
    for (const std::string body : {"", "{", "[]", "true", "{}", "{\"enabled\": 1}", "{\"enabled\": \"true\"}",
                                   "{\"enabled\": null}", "{\"enabled\": true} x", "\xff\xfe"})
        EXPECT_EQ(put(body), 400U) << body;
    EXPECT_EQ(put("{\"enabled\": true}", "text/plain"), 400U);
    EXPECT_EQ(put("{\"enabled\": true}", "application/cbor"), 400U);
    EXPECT_EQ(put("{\"enabled\": true}", "Application/JSON; charset=utf-8"), 200U);
    const auto post = [&](const std::string& path, const std::string& body) {
        return RawHttp::Request(server.ControlPort(), "POST", path, body).status;
    };
    EXPECT_EQ(post(kArchivePath, ""), 400U);
    EXPECT_EQ(post(kArchivePath, "{\"contents\": \"allWorkspaces\"}"), 400U);
    EXPECT_EQ(post(kArchivePath, "{\"contents\": [\"someWorkspaces\"]}"), 400U);
    EXPECT_EQ(post(kRestorePath, kArchiveBody), 400U);
    EXPECT_EQ(post(kRestorePath, "{\"contents\": [\"allWorkspaces\"], \"data\": \"text\"}"), 400U);
    ExpectWorks(server);
}

TEST_F(ServerLimits, nestingIsBounded) {
    const OstraServerProcess server(Served());
    const auto nested = [](unsigned levels) {
        return "{\"enabled\": true, \"x\": " + std::string(levels, '[') + std::string(levels, ']') + "}";
    };
    const auto put = [&](const std::string& body, const std::string& type) {
        return RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, body, type).status;
    };
    EXPECT_EQ(put(nested(63), "application/json"), 200U);
    EXPECT_EQ(put(nested(64), "application/json"), 400U);
    EXPECT_EQ(put(nested(30000), "application/json"), 400U);
    EXPECT_EQ(put("{\"enabled\": true, \"x\": \"" + std::string(1000, '[') + "\\\"[\"}", "application/json"),
              200U);
    const auto nestedCbor = [](unsigned levels) {
        return "\xa2\x67"
               "enabled\xf5\x61x" +
               std::string(levels, '\x81') + '\0';
    };
    EXPECT_EQ(put(nestedCbor(63), "application/cbor"), 200U);
    EXPECT_EQ(put(nestedCbor(64), "application/cbor"), 400U);
    EXPECT_EQ(put(nestedCbor(60000), "application/cbor"), 400U);
    ExpectWorks(server);
}

TEST_F(ServerLimits, malformedCborIs400AndChangesNothing) {
    const OstraServerProcess server(Served());
    const std::string good = RestoreBody(Backup(changed));
    const std::string key = "\x64"
                            "data";
    const std::vector<std::string> bodies{
        "\xa0",                                                 // an empty map
        "\x80",                                                 // a list
        "\xbf\xff",                                             // a map without a length
        good.substr(0, 1),                                      // ends after its head
        good.substr(0, good.size() - 1),                        // a byte short
        good + "x",                                             // a byte too many
        "\xa1" + key + "\x5b\x7f\xff\xff\xff\xff\xff\xff\xff",  // a string of eight exabytes
        "\xa1" + key + "\x5f\x41x\xff",                         // a string in pieces
        "\xbb\xff\xff\xff\xff\xff\xff\xff\xff" + key + "\x41x", // a map of endless entries
        "\xa1\x61x\xbb\x7f\xff\xff\xff\xff\xff\xff\xff",        // nested the same
        "\xa1\x61x\x9b\x7f\xff\xff\xff\xff\xff\xff\xff",
        "\xa1\x01\x02",         // a key that is no text
        "\xa1" + key + "\x61x", // text for data
        "\xa3" + good.substr(1) + key + "\x41x",
        "\xa1\x7c",
    };
    for (const std::string& body : bodies)
        EXPECT_EQ(
            RawHttp::Request(server.ControlPort(), "POST", kRestorePath, body, "application/cbor").status,
            400U)
            << testing::PrintToString(body.substr(0, 20));
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(Leftovers(), "");
}

TEST_F(ServerLimits, cborWithReservedLengthsOverflowOrAKeyTwiceIs400) {
    const OstraServerProcess server(Served());
    const std::string zeros(8, '\0');
    const std::string on = "\x67"
                           "enabled\xf5";
    const std::string off = "\x67"
                            "enabled\xf4";
    const auto put = [&](const std::string& body) {
        return RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, body, "application/cbor").status;
    };
    for (unsigned reserved = 28; reserved < 32; ++reserved)
        EXPECT_EQ(put("\xa2" + on + "\x61x" + static_cast<char>(reserved) +
                      std::string(std::size_t{1} << (reserved - 24), '\0')),
                  400U)
            << reserved;
    EXPECT_EQ(put("\xa2" + on + "\x61x\xbb\x80" + zeros.substr(1)), 400U); // twice 2^63 is no nothing
    EXPECT_EQ(put("\xa2" + on + off), 400U);
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", kReplayPath).body, R"({"enabled":false})");
    EXPECT_EQ(put("\xa1" + on), 200U);
}

TEST_F(ServerLimits, contentsInCborAreOneListThatMayHoldOtherThings) {
    const OstraServerProcess server(Served());
    const std::string contents = "\x68"
                                 "contents";
    const std::string all = "\x6d"
                            "allWorkspaces";
    const auto post = [&](const std::string& body) {
        return RawHttp::Request(server.ControlPort(), "POST", kArchivePath, body, "application/cbor").status;
    };
    const auto nested = [](unsigned levels) { return std::string(levels, '\x81') + '\0'; };
    EXPECT_EQ(post("\xa1" + contents + "\x81" + all), 200U);
    EXPECT_EQ(post("\xa1" + contents + "\x82" + all + "\x61x"), 200U);
    EXPECT_EQ(post("\xa1" + contents + "\x82" + all + nested(62)), 200U);
    EXPECT_EQ(post("\xa1" + contents + "\x82" + all + nested(63)), 400U);
    EXPECT_EQ(post("\xa1" + contents + "\x80"), 400U);
    EXPECT_EQ(post("\xa2" + contents + "\x81" + all + contents + "\x81" + all), 400U);
}

TEST_F(ServerLimits, headsAndBodiesUpToTheirLimitsAreTaken) {
    const OstraServerProcess server(Served());
    const std::string longField = "X: " + std::string(64'000, 'x') + "\r\n";
    EXPECT_EQ(StatusOf(server, "GET /system/info HTTP/1.1\r\nHost: 127.0.0.1\r\n" + longField + "\r\n"),
              200U);
    std::string body = R"({"enabled": true})";
    body += std::string(std::size_t{64} * 1024 - body.size(), ' ');
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, body).status, 200U);
}

TEST_F(ServerLimits, aBodyHasItsOwnTimeToArriveIn) {
    const OstraServerProcess server(Served(), {"--idle-timeout", "3600000", "--transfer-timeout", "50"});
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, "Content-Length: 10\r\n")), 408U);
}

TEST_F(ServerLimits, aRequestBeyondItsLimitIsRefusedBeforeItsBodyIsRead) {
    OstraServerProcess server(Served(), {"--request-limit", "100000"});
    const std::string cbor = "Content-Type: application/cbor\r\n";
    EXPECT_EQ(StatusOf(server, Head(kRestorePath, cbor + "Content-Length: 100001\r\n")), 413U);
    EXPECT_EQ(StatusOf(server, Head(kRestorePath, cbor + "Content-Length: 10737418240\r\n")), 413U);
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, "Content-Length: 65537\r\n")), 413U);
    EXPECT_EQ(StatusOf(server, Head(kRestorePath, "Content-Length: 65537\r\n")), 413U);
    EXPECT_EQ(
        StatusOf(server, Head(kRestorePath, cbor + "Expect: 100-continue\r\nContent-Length: 100001\r\n")),
        413U);
    EXPECT_THAT(server.Requests(), testing::Each(testing::EndsWith(" 0 413")));
    const std::string exactly = std::string(100000, 'x');
    EXPECT_EQ(
        RawHttp::Request(server.ControlPort(), "POST", kRestorePath, exactly, "application/cbor").status,
        400U);
}

TEST_F(ServerLimits, aClientThatSendsOnGetsTheRefusalToo) {
    const OstraServerProcess server(Served(), {"--request-limit", "1000"});
    RawHttp http(server.ControlPort());
    http.Send(RawHttp::Text("POST", kRestorePath, std::string(3'000'000, 'x'), "application/cbor"));
    EXPECT_EQ(http.Read().status, 413U);
}

TEST_F(ServerLimits, chunkedBodiesAreUnderstoodAndLimited) {
    const OstraServerProcess server(Served());
    const std::string chunked = "Transfer-Encoding: chunked\r\n";
    EXPECT_EQ(StatusOf(server, "PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\n" + chunked +
                                   "\r\n8\r\n{\"enable\r\n9\r\nd\": true}\r\n0\r\n\r\n"),
              200U);
    const std::string body = RestoreBody(Backup(changed));
    std::string pieces;
    for (std::size_t at = 0; at < body.size(); at += 1000) {
        char size[8];
        std::snprintf(size, sizeof(size), "%zx", body.substr(at, 1000).size());
        pieces += size + ("\r\n" + body.substr(at, 1000)) + "\r\n";
    }
    EXPECT_EQ(StatusOf(server, Head(kRestorePath, "Content-Type: application/cbor\r\n" + chunked) + pieces +
                                   "0\r\n\r\n"),
              200U);
    EXPECT_EQ(TreeOf(Served()), changed);
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, chunked) + "fffff\r\n" + std::string(70000, ' ')), 413U);
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, chunked) + "7fffffffffffffff\r\n"), 413U);
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, chunked) + "xyz\r\n"), 400U);
    EXPECT_EQ(StatusOf(server, Head(kArchivePath, chunked) + "ffffffffffffffffff\r\n"), 400U);
}

TEST_F(ServerLimits, contradictoryLengthsAre400) {
    const OstraServerProcess server(Served());
    for (const std::string fields :
         {"Content-Length: 2\r\nContent-Length: 3\r\n", "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n",
          "Transfer-Encoding: chunked\r\nContent-Length: 2\r\n", "Content-Length: -1\r\n",
          "Content-Length: 2x\r\n", "Content-Length: 99999999999999999999999\r\n"})
        EXPECT_EQ(StatusOf(server, Head(kArchivePath, fields) + "{}"), 400U) << fields;
    ExpectWorks(server);
}

TEST_F(ServerLimits, malformedHeadsAre400) {
    const OstraServerProcess server(Served());
    for (const std::string& request :
         {std::string("\r\n\r\nnonsense\r\n\r\n"), std::string("GET\r\n\r\n"),
          std::string("GET / HTTP/9.9\r\n\r\n"), std::string("GET /system/info HTTP/1.1\r\nno colon\r\n\r\n"),
          std::string(100, '\0'), "GET /" + std::string(66'000, 'x') + " HTTP/1.1\r\n\r\n",
          "GET / HTTP/1.1\r\nX: " + std::string(66'000, 'x') + "\r\n\r\n"})
        EXPECT_EQ(StatusOf(server, request), 400U) << request.substr(0, 40);
    ExpectWorks(server);
}

TEST_F(ServerLimits, aCutBodyIs400AndChangesNothing) {
    OstraServerProcess server(Served());
    const std::string request =
        RawHttp::Text("POST", kRestorePath, RestoreBody(Backup(changed)), "application/cbor");
    for (std::size_t tenth = 1; tenth < 10; ++tenth) {
        RawHttp http(server.ControlPort());
        http.Send(request.substr(0, request.size() * tenth / 10));
        http.EndSending();
        EXPECT_EQ(http.Read().status, 400U);
    }
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(Leftovers(), "");
}

TEST_F(ServerLimits, clientsThatLeaveAreForgotten) {
    const OstraServerProcess server(Served(), {"--connections", "2"});
    const std::string request =
        RawHttp::Text("POST", kRestorePath, RestoreBody(Backup(changed)), "application/cbor");
    for (std::size_t i = 0; i < 10; ++i) {
        RawHttp http(server.ControlPort());
        http.Send(request.substr(0, i * request.size() / 10));
    }
    unsigned status = 503;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (status == 503 && std::chrono::steady_clock::now() < end)
        status = RawHttp::Request(server.ControlPort(), "GET", "/system/info").status;
    EXPECT_EQ(status, 200U);
}

TEST_F(ServerLimits, aSilentClientIsDropped) {
    const OstraServerProcess server(Served(), {"--idle-timeout", "100"});
    RawHttp silent(server.ControlPort());
    EXPECT_TRUE(silent.Closed());
    RawHttp half(server.ControlPort());
    half.Send("GET /system/in");
    EXPECT_EQ(half.Read().status, 408U);
    EXPECT_TRUE(half.Closed());
}

TEST_F(ServerLimits, aDrippingClientIsDropped) {
    OstraServerProcess server(Served(), {"--idle-timeout", "200", "--transfer-timeout", "200"});
    const auto drip = [&](const std::string& start) {
        RawHttp http(server.ControlPort());
        http.Send(start);
        const auto begin = std::chrono::steady_clock::now();
        std::jthread dripping([&](const std::stop_token& enough) {
            while (!enough.stop_requested() && http.Send("x"))
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
        });
        EXPECT_EQ(http.Read().status, 408U);
        dripping.request_stop();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    };
    drip("GET /");
    drip(Head(kRestorePath, "Content-Type: application/cbor\r\nContent-Length: 100000\r\n"));
    EXPECT_EQ(Leftovers(), "");
}

TEST_F(ServerLimits, aClientThatDoesNotReadIsDropped) {
    original["vdk/ContourPath/large.trk"] = std::string(30'000'000, 'o');
    MakeTree(Served(), original);
    const OstraServerProcess server(Served(), {"--transfer-timeout", "200", "--connections", "1"});
    RawHttp lazy(server.ControlPort());
    lazy.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
    unsigned status = 503;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (status == 503 && std::chrono::steady_clock::now() < end)
        status = RawHttp::Request(server.ControlPort(), "GET", "/system/info").status;
    EXPECT_EQ(status, 200U);
    EXPECT_FALSE(lazy.Read().Whole());
}

TEST_F(ServerLimits, continueIsSaidToAClientThatWaitsForIt) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    http.Send("PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\nExpect: 100-continue\r\n"
              "Content-Length: 17\r\n\r\n");
    EXPECT_EQ(http.Read().status, 100U);
    http.Send("{\"enabled\": true}");
    EXPECT_EQ(http.Read().status, 200U);
}

} // namespace
