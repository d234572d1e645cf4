#include "ServerTest.h"

#include <filesystem>
#include <iterator>
#include <list>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include <sys/resource.h>

// Clients that take places and give nothing: they must not lock the others out.

namespace {

class ServerConnections : public ServerTest {
  protected:
    /// Connections from one address that have each begun a request.
    using Connections = std::list<RawHttp>;

    static void Open(Connections& connections, const OstraServerProcess& server, int count,
                     const std::string& from, const std::string& bytes) {
        for (int i = 0; i < count; ++i) {
            connections.emplace_back(server.ControlPort(), from);
            connections.back().Send(bytes);
        }
    }

    /// The status that a client from an address gets.
    static unsigned StatusFrom(const OstraServerProcess& server, const std::string& from) {
        RawHttp http(server.ControlPort(), from);
        http.Send(RawHttp::Text("GET", "/system/info"));
        return http.Read().status;
    }

    /// Begins a request whose body does not come, and waits until the server reads it.
    static void BeginBody(RawHttp& http) {
        http.Send("PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\nExpect: 100-continue\r\n"
                  "Content-Length: 17\r\n\r\n");
        EXPECT_EQ(http.ReadHead().status, 100U);
    }

    static std::ptrdiff_t DescriptorsOf(const OstraServerProcess& server) {
        return std::distance(
            std::filesystem::directory_iterator("/proc/" + std::to_string(server.Pid()) + "/fd"), {});
    }

    /// Asks again until the server answers something else than `status`, for at most 20 s.
    template<typename Ask>
    static unsigned Until(unsigned status, const Ask& ask) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        unsigned answered = ask();
        while (answered != status && std::chrono::steady_clock::now() < end)
            answered = ask();
        return answered;
    }
};

TEST_F(ServerConnections, oneTooManyIs503) {
    const OstraServerProcess server(Served(), {"--connections", "2"});
    RawHttp first(server.ControlPort(), "127.0.0.2");
    RawHttp second(server.ControlPort(), "127.0.0.3");
    BeginBody(first);
    BeginBody(second);
    RawHttp third(server.ControlPort(), "127.0.0.4");
    const RawHttp::Reply turnedAway = third.Read();
    EXPECT_EQ(turnedAway.status, 503U);
    EXPECT_TRUE(turnedAway.Whole());
    first.Send("{\"enabled\": true}");
    EXPECT_EQ(first.Read().status, 200U);
}

TEST_F(ServerConnections, oneAddressGetsHalfOfThePlaces) {
    const OstraServerProcess server(Served(), {"--connections", "8"});
    Connections greedy;
    for (int i = 0; i < 4; ++i)
        BeginBody(greedy.emplace_back(server.ControlPort(), "127.0.0.2"));
    EXPECT_EQ(StatusFrom(server, "127.0.0.2"), 503U);
    for (int i = 0; i < 4; ++i)
        BeginBody(greedy.emplace_back(server.ControlPort(), "127.0.0.3"));
    EXPECT_EQ(StatusFrom(server, "127.0.0.4"), 503U) << "now there is no place at all";
}

TEST_F(ServerConnections, halfHeadsDoNotLockOthersOut) {
    const OstraServerProcess server(Served(), {"--head-timeout", "400"});
    Connections half;
    Open(half, server, 32, "127.0.0.2", "GET /system/info HTTP/1.1\r\nHost: 127");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(StatusFrom(server, "127.0.0.3"), 200U);
    EXPECT_EQ(Until(200, [&] { return StatusFrom(server, "127.0.0.2"); }), 200U)
        << "once the half heads have gone";
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(ServerConnections, aHeadHasFiveSecondsToArrive) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    http.Send("GET /sys");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(http.Read().status, 408U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(15));
}

TEST_F(ServerConnections, theOldestIdleOneGivesWayToANewOne) {
    const OstraServerProcess server(Served(), {"--connections", "4"});
    Connections idle;
    for (const char* const from : {"127.0.0.2", "127.0.0.3", "127.0.0.4", "127.0.0.5"}) {
        idle.emplace_back(server.ControlPort(), from);
        idle.back().Send(RawHttp::Text("GET", "/system/info"));
        EXPECT_EQ(idle.back().Read().status, 200U);
    }
    EXPECT_EQ(Until(200, [&] { return StatusFrom(server, "127.0.0.6"); }), 200U);
    EXPECT_TRUE(idle.front().Closed());
    idle.back().Send(RawHttp::Text("GET", "/system/info"));
    EXPECT_EQ(idle.back().Read().status, 200U);
}

TEST_F(ServerConnections, withOnePlaceAConnectFollowedByARequestWorksEachTime) {
    const OstraServerProcess server(Served(), {"--connections", "1"});
    const std::string closing = "GET /system/info HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n";
    for (int round = 0; round < 300; ++round) {
        RawHttp http(server.ControlPort());
        http.Send(closing);
        ASSERT_EQ(http.Read().status, 200U) << round;
    }
    for (int round = 0; round < 300; ++round) {
        RawHttp http(server.ControlPort());
        http.Send(RawHttp::Text("GET", "/system/info"));
        ASSERT_EQ(http.Read().status, 200U) << round;
    }
}

TEST_F(ServerConnections, eachNeedsOneDescriptor) {
    const OstraServerProcess server(Served(), {"--connections", "400"});
    const std::ptrdiff_t before = DescriptorsOf(server);
    Connections connections;
    for (int i = 0; i < 100; ++i) {
        connections.emplace_back(server.ControlPort());
        connections.back().Send(RawHttp::Text("GET", "/system/info"));
        EXPECT_EQ(connections.back().Read().status, 200U);
    }
    EXPECT_LE(DescriptorsOf(server), before + 100);
}

TEST_F(ServerConnections, aDescriptorTooFewIsWaitedFor) {
    const OstraServerProcess server(Served());
    EXPECT_EQ(StatusFrom(server, "127.0.0.2"), 200U);
    rlimit before{};
    const auto few = static_cast<rlim_t>(DescriptorsOf(server) + 1);
    ASSERT_EQ(prlimit(server.Pid(), RLIMIT_NOFILE, nullptr, &before), 0);
    const rlimit limit{few, before.rlim_max};
    ASSERT_EQ(prlimit(server.Pid(), RLIMIT_NOFILE, &limit, nullptr), 0);
    Connections waiting;
    Open(waiting, server, 10, "127.0.0.3", RawHttp::Text("GET", "/system/info"));
    EXPECT_EQ(waiting.front().Read().status, 200U);
    ASSERT_EQ(prlimit(server.Pid(), RLIMIT_NOFILE, &before, nullptr), 0);
    for (auto each = std::next(waiting.begin()); each != waiting.end(); ++each)
        EXPECT_EQ(each->Read().status, 200U);
}

TEST_F(ServerConnections, moreThanTheSystemAllowsAreRefusedAtTheStart) {
    const std::string start =
        "ulimit -n 300 && '" + OstraServerProcess::Program() +
        "' --port 0 --discovery-port 0 --workspace 'station one' --connections 1000 2> error";
    EXPECT_TRUE(Shell(start + "; test $? = 1"));
    EXPECT_THAT(FileContent(folder.Path("error")),
                testing::HasSubstr("--connections 1000 needs 3144 open files, and the system allows 300"));
}

TEST_F(ServerConnections, aServerOfAThousandStartsWhereTheSystemAllowsIt) {
    const OstraServerProcess server(Served(), {"--connections", "1000"});
    Connections connections;
    for (int i = 0; i < 400; ++i)
        connections.emplace_back(server.ControlPort());
    EXPECT_EQ(StatusFrom(server, "127.0.0.2"), 200U);
}

TEST_F(ServerConnections, aFloodDoesNotEndTheServer) {
    const OstraServerProcess server(Served(), {"--connections", "4"});
    for (int round = 0; round < 20; ++round) {
        Connections flood;
        Open(flood, server, 50, "127.0.0.2", "GET / HT");
    }
    EXPECT_EQ(Until(200, [&] { return StatusFrom(server, "127.0.0.3"); }), 200U);
}

} // namespace
