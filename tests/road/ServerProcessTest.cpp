#include "ServerTest.h"

#include <array>
#include <thread>

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using testing::HasSubstr;

/// A datagram socket on loopback.
class Asker {
  public:
    explicit Asker(std::uint16_t port) : file(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        const timeval patience{30, 0};
        setsockopt(file, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        sockaddr_in server{};
        server.sin_family = AF_INET;
        server.sin_port = htons(port);
        server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(connect(file, reinterpret_cast<const sockaddr*>(&server), sizeof(server)), 0);
    }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;
    ~Asker() { close(file); }

    void Ask(const std::string& datagram) const {
        EXPECT_EQ(send(file, datagram.data(), datagram.size(), 0), static_cast<ssize_t>(datagram.size()));
    }
    [[nodiscard]] std::string Answer() const {
        std::array<char, 65536> answer{};
        const ssize_t size = recv(file, answer.data(), answer.size(), 0);
        return {answer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
    }
    /// Whether one has come that was not read yet.
    [[nodiscard]] bool HasAnswer() const {
        char byte = 0;
        return recv(file, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
    }

  private:
    int file;
};

const char* const kQuestion = "{\"ostra\":\"discover\",\"version\":1}";

using ServerProcess = ServerTest;

TEST_F(ServerProcess, discoveryAnswerHasEveryKeyWithItsType) {
    const OstraServerProcess server(Served(), {"--serial", "4711", "--model", "Line 5"});
    const Asker asker(server.DiscoveryPort());
    asker.Ask(kQuestion);
    const QJsonObject answer = QJsonDocument::fromJson(QByteArray::fromStdString(asker.Answer())).object();
    EXPECT_EQ(answer.size(), 14);
    for (const char* key : {"DeviceModel", "AppName", "AppId", "AppVersion", "Address", "Mask", "Gateway"})
        EXPECT_TRUE(answer.value(QLatin1String(key)).isString()) << key;
    for (const char* key : {"SerialNumber", "ControlPort", "WebPort", "VdpPort"})
        EXPECT_TRUE(answer.value(QLatin1String(key)).isDouble()) << key;
    for (const char* key : {"Dhcp", "IsRemote", "AddressConflict"})
        EXPECT_TRUE(answer.value(QLatin1String(key)).isBool()) << key;
    EXPECT_EQ(answer.value(QLatin1String("SerialNumber")).toInt(), 4711);
    EXPECT_EQ(answer.value(QLatin1String("DeviceModel")).toString(), QLatin1String("Line 5"));
    EXPECT_EQ(answer.value(QLatin1String("ControlPort")).toInt(), server.ControlPort());
    EXPECT_EQ(answer.value(QLatin1String("Address")).toString(), QLatin1String("127.0.0.1"));
}

TEST_F(ServerProcess, onlyTheQuestionIsAnswered) {
    const OstraServerProcess server(Served(), {"--serial", "4711"});
    const Asker stranger(server.DiscoveryPort());
    for (const std::string& datagram :
         {std::string(), std::string("x"), std::string(65507, 'x'), std::string("{}"), std::string("[1]"),
          std::string("{\"ostra\":\"discover\"}"), std::string("{\"ostra\":\"discover\",\"version\":2}"),
          std::string("{\"ostra\":\"answer\",\"version\":1}"), std::string(2000, '['),
          kQuestion + std::string(10000, ' ')})
        stranger.Ask(datagram);
    // Datagrams are answered in their order: who gets the answer to the last one has got all.
    stranger.Ask(kQuestion);
    EXPECT_THAT(stranger.Answer(), HasSubstr("4711"));
    const Asker other(server.DiscoveryPort());
    other.Ask(kQuestion);
    EXPECT_THAT(other.Answer(), HasSubstr("4711"));
    EXPECT_FALSE(stranger.HasAnswer()) << stranger.Answer();
}

TEST_F(ServerProcess, stopsCleanlyOnASignal) {
    OstraServerProcess server(Served());
    EXPECT_EQ(server.Stop(), 0);
    server.Restart();
    kill(server.Pid(), SIGINT);
    EXPECT_EQ(server.Stop(), 0);
}

TEST_F(ServerProcess, stopsWhileClientsAreInTheMiddle) {
    original["vdk/ContourPath/large.trk"] = std::string(30'000'000, 'o');
    MakeTree(Served(), original);
    OstraServerProcess server(Served(), {"--fault-delay", "60000", "--fault-path", "/system/info"});
    RawHttp silent(server.ControlPort());
    RawHttp lazy(server.ControlPort());
    lazy.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
    RawHttp delayed(server.ControlPort());
    delayed.Send(RawHttp::Text("GET", "/system/info"));
    RawHttp sending(server.ControlPort());
    sending.Send(
        RawHttp::Text("POST", kRestorePath, std::string(1000, 'x'), "application/cbor").substr(0, 500));
    while (server.Requests().size() < 2)
        std::this_thread::yield();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(server.Stop(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(15));
    EXPECT_EQ(Leftovers(), "");
}

TEST_F(ServerProcess, helpTellsTheOptions) {
    EXPECT_TRUE(Shell("'" + OstraServerProcess::Program() + "' --help > help"));
    for (const char* option :
         {"--address", "--port", "--discovery-port", "--workspace", "--serial", "--model", "--request-limit",
          "--connections", "--idle-timeout", "--transfer-timeout", "--log", "--replay",
          "--restore-sets-replay", "--fault-delay", "--fault-cut", "--fault-status", "--fault-damage",
          "--fault-path"})
        EXPECT_THAT(FileContent(folder.Path("help")), HasSubstr(option));
}

TEST_F(ServerProcess, wrongOptionsAreToldAndEndIt) {
    const std::string start = "'" + OstraServerProcess::Program() + "' --port 0 --discovery-port 0 ";
    for (const std::string words :
         {"", "--workspace . --port 65536", "--workspace . --port x", "--workspace . --replay maybe",
          "--workspace . --nonsense", "--workspace . more", "--workspace . --serial -1",
          "--workspace . --fault-status 99"}) {
        EXPECT_TRUE(Shell(start + words + " 2> error; test $? = 2")) << words;
        EXPECT_THAT(FileContent(folder.Path("error")), HasSubstr("--help")) << words;
    }
    EXPECT_TRUE(Shell(start + "--workspace 'no such' 2> error; test $? = 1"));
    EXPECT_THAT(FileContent(folder.Path("error")), HasSubstr("no such"));
    EXPECT_TRUE(Shell(start + "--workspace . --address nonsense 2> error; test $? = 1"));
}

TEST_F(ServerProcess, faultStatusAnswersInsteadOfDoing) {
    const OstraServerProcess server(Served(), {"--fault-status", "500", "--fault-path", kRestorePath});
    EXPECT_EQ(Restore(server, Backup(changed)).status, 500U);
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(Archive(server).status, 200U);
}

TEST_F(ServerProcess, faultCutClosesWithinTheReply) {
    const OstraServerProcess server(Served(), {"--fault-cut", "1000", "--fault-path", kArchivePath});
    const RawHttp::Reply reply = Archive(server);
    EXPECT_EQ(reply.status, 200U);
    EXPECT_EQ(reply.head.size() + reply.body.size(), 1000U);
    EXPECT_GT(reply.length, reply.body.size());
    EXPECT_TRUE(RawHttp::Request(server.ControlPort(), "GET", "/system/info").Whole());
}

TEST_F(ServerProcess, faultCutOfZeroGivesNoReply) {
    const OstraServerProcess server(Served(), {"--fault-cut", "0"});
    EXPECT_EQ(Archive(server).status, 0U);
}

TEST_F(ServerProcess, faultDamageChangesBytesOfTheBodyOnly) {
    const RawHttp::Reply whole = Archive(OstraServerProcess(Served()));
    const RawHttp::Reply damaged = Archive(OstraServerProcess(Served(), {"--fault-damage"}));
    EXPECT_EQ(damaged.status, 200U);
    ASSERT_EQ(damaged.body.size(), whole.body.size());
    std::size_t different = 0;
    for (std::size_t i = 0; i < whole.body.size(); ++i)
        different += whole.body[i] != damaged.body[i] ? 1 : 0;
    EXPECT_NE(whole.body.front(), damaged.body.front());
    EXPECT_EQ(different, (whole.body.size() + 999) / 1000);
}

TEST_F(ServerProcess, faultDelayHoldsTheReplyBack) {
    const OstraServerProcess server(Served(), {"--fault-delay", "300", "--fault-path", "/system/info"});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/system/info").status, 200U);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
}

TEST_F(ServerProcess, aDelayTakesNoTimeFromTheReply) {
    const OstraServerProcess server(
        Served(), {"--fault-delay", "1600", "--idle-timeout", "1500", "--transfer-timeout", "1500"});
    EXPECT_TRUE(RawHttp::Request(server.ControlPort(), "GET", "/system/info").Whole());
    EXPECT_TRUE(Archive(server).Whole());
}

TEST_F(ServerProcess, faultsCanBeSkippedAndCounted) {
    const OstraServerProcess server(Served(), {"--fault-status", "503", "--fault-path", kReplayPath,
                                               "--fault-skip", "1", "--fault-count", "2"});
    std::vector<unsigned> statuses;
    for (int i = 0; i < 5; ++i) {
        statuses.push_back(RawHttp::Request(server.ControlPort(), "GET", kReplayPath).status);
        RawHttp::Request(server.ControlPort(), "GET", "/system/info");
    }
    EXPECT_THAT(statuses, testing::ElementsAre(200U, 503U, 503U, 200U, 200U));
}

} // namespace
