#include "ServerTest.h"

#include <filesystem>
#include <regex>
#include <thread>

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject JsonOf(const RawHttp::Reply& reply) {
    EXPECT_THAT(reply.head, testing::HasSubstr("Content-Type: application/json\r\n"));
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body)).object();
}

bool ReplayOf(const OstraServerProcess& server) {
    const RawHttp::Reply reply = RawHttp::Request(server.ControlPort(), "GET", kReplayPath);
    EXPECT_EQ(reply.status, 200U);
    const QJsonValue enabled = JsonOf(reply).value(QLatin1String("enabled"));
    EXPECT_TRUE(enabled.isBool());
    return enabled.toBool();
}

using ServerAnswers = ServerTest;

TEST_F(ServerAnswers, sendsEveryKeyOfInfoWithItsType) {
    const OstraServerProcess server(Served(), {"--serial", "4294967295", "--model", "Line \"5\""});
    const RawHttp::Reply reply = RawHttp::Request(server.ControlPort(), "GET", "/system/info");
    EXPECT_EQ(reply.status, 200U);
    const QJsonObject info = JsonOf(reply);
    EXPECT_EQ(info.size(), 14);
    EXPECT_EQ(info.value(QLatin1String("SerialNumber")).toDouble(), 4294967295.0);
    EXPECT_EQ(info.value(QLatin1String("DeviceModel")).toString(), QLatin1String("Line \"5\""));
    EXPECT_EQ(info.value(QLatin1String("ControlPort")).toInt(), server.ControlPort());
    EXPECT_EQ(info.value(QLatin1String("Address")).toString(), QLatin1String("127.0.0.1"));
    EXPECT_EQ(info.value(QLatin1String("Mask")).toString(), QLatin1String("255.0.0.0"));
}

TEST_F(ServerAnswers, archivesTheWorkspaceInBothLevels) {
    const OstraServerProcess server(Served(), {"--serial", "77"});
    EXPECT_EQ(ServedTree(server), original);
    EXPECT_THAT(FileContent(folder.Path("got/info.json")), testing::HasSubstr("\"serial\":\"77\""));
    EXPECT_TRUE(Shell("tar -tf got.tar > names"));
    EXPECT_EQ(FileContent(folder.Path("names")), "info.json\nworkspaces/\nworkspaces/Workspace.osws\n");
}

TEST_F(ServerAnswers, sendsArchivesThatBsdTarReads) {
    const OstraServerProcess server(Served());
    ServedTree(server);
    EXPECT_TRUE(Shell("mkdir bsd && bsdtar -xf got/workspaces/Workspace.osws -C bsd"));
    EXPECT_EQ(TreeOf(folder.Path("bsd")), original);
}

TEST_F(ServerAnswers, archivesLongNamesAndModificationTimes) {
    const std::string longName = "vdk/ContourPath/" + std::string(200, 'n') + ".trk";
    const std::string exactlyHundred = "vdk/" + std::string(96, 'h');
    original[longName] = "long";
    original[exactlyHundred] = "hundred";
    original[exactlyHundred + "1"] = "more";
    MakeTree(Served(), original);
    EXPECT_TRUE(Shell("touch -d @1700000000 'station one/vdk/settings.json'"));
    const OstraServerProcess server(Served());
    EXPECT_EQ(ServedTree(server), original);
    EXPECT_TRUE(Shell("test $(stat -c %Y got/in/vdk/settings.json) = 1700000000"));
}

TEST_F(ServerAnswers, leavesLinksAndSpecialFilesOutOfTheArchive) {
    EXPECT_TRUE(
        Shell("ln -s /etc/passwd 'station one/vdk/ContourPath/link.trk'; ln -s /etc 'station one/etc'; "
              "mkfifo 'station one/vdk/pipe'"));
    const OstraServerProcess server(Served());
    EXPECT_EQ(ServedTree(server), original);
}

TEST_F(ServerAnswers, archivesFoldersToTheDepthThatClientsUnpack) {
    std::string deepest;
    for (int level = 0; level < 64; ++level)
        deepest += "d/";
    MakeTree(Served(), {{deepest, ""}});
    const OstraServerProcess server(Served());
    EXPECT_TRUE(ServedTree(server).contains(deepest));
    MakeTree(Served(), {{deepest + "d/", ""}});
    const RawHttp::Reply reply = Archive(server);
    EXPECT_EQ(reply.status, 500U);
    EXPECT_EQ(reply.body, R"({"error":"The workspace's folders nest too deep."})");
}

TEST_F(ServerAnswers, reportsAnUnacceptableNameBeforeTheArchiveBegins) {
    const std::string folders = std::string(200, 'a') + "/" + std::string(200, 'b') + "/";
    MakeTree(Served(), {{folders + std::string(112, 'c'), ""}}); // 514 characters
    const OstraServerProcess server(Served());
    EXPECT_EQ(Archive(server).status, 500U);
    MakeTree(Served(), {{folders + std::string(109, 'c'), ""}});
    EXPECT_EQ(Archive(server).status, 200U);
}

TEST_F(ServerAnswers, archivesTimesThatExceedTheHeaderField) {
    EXPECT_TRUE(Shell("touch -d @8589935592 'station one/vdk/settings.json'")); // 8^11 + 1000
    if (!Shell("test $(stat -c %Y 'station one/vdk/settings.json') = 8589935592"))
        GTEST_SKIP() << "the file system cannot store it either";
    const OstraServerProcess server(Served());
    EXPECT_EQ(ServedTree(server), original);
    EXPECT_TRUE(Shell("test $(stat -c %Y got/in/vdk/settings.json) = 8589935592"));
}

TEST_F(ServerAnswers, archivesSizesThatExceedTheHeaderField) {
    MakeTree(Served(), {{"a", ""}});
    EXPECT_TRUE(Shell("truncate -s 8589934592 'station one/a'")); // 8^11
    const OstraServerProcess server(Served(), {"--fault-cut", "10000"});
    const RawHttp::Reply reply = Archive(server);
    EXPECT_GT(reply.length, 8589934592U);
    WriteFile(folder.Path("cut.tar"), reply.body.substr(15));
    Shell("tar -tvf cut.tar > outer 2> error; "
          "tar -xOf cut.tar workspaces/Workspace.osws 2> error | tar -tvf - > inner 2> error");
    // In addition to the file's bytes: three header blocks before and two blocks after.
    EXPECT_THAT(FileContent(folder.Path("outer")),
                testing::ContainsRegex(" 8589937152 .* workspaces/Workspace.osws\n"));
    EXPECT_THAT(FileContent(folder.Path("inner")), testing::ContainsRegex(" 8589934592 .* a\n"));
}

TEST_F(ServerAnswers, truncatesTheArchiveWhenAFileChanges) {
    const std::string file = "'station one/z.trk'";
    const std::vector<std::pair<std::string, std::string>> changes{
        {"full", "printf more >> " + file},
        {"full", "truncate -s 2 " + file},
        {"full", "rm " + file},
        {"full", "rm " + file + " && printf full > other && ln -s \"$PWD/other\" " + file},
        {"", "rm " + file + " && mkfifo " + file},
        {"", "rm " + file + " && mkdir " + file},
    };
    for (const auto& [content, change] : changes) {
        SCOPED_TRACE(change);
        MakeTree(Served(), {{"a.trk", std::string(30'000'000, 'o')}, {"z.trk", content}});
        const OstraServerProcess server(Served());
        RawHttp slow(server.ControlPort());
        slow.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
        while (server.Requests().empty())
            std::this_thread::yield();
        EXPECT_TRUE(Shell(change));
        const RawHttp::Reply reply = slow.Read();
        EXPECT_EQ(reply.status, 200U);
        EXPECT_GT(reply.body.size(), 30'000'000U);
        EXPECT_FALSE(reply.IsComplete());
        EXPECT_TRUE(slow.Closed());
        std::filesystem::remove_all(Served());
    }
}

TEST_F(ServerAnswers, sendsNothingThroughAFolderThatBecameALink) {
    const std::string secret = "not for clients";
    for (const std::string change : {"mv deep elsewhere && ln -s \"$PWD/../outside\" deep",
                                     "mv deep/er elsewhere && ln -s \"$PWD/../outside/er\" deep/er"}) {
        SCOPED_TRACE(change);
        MakeTree(folder.Path("outside"), {{"er/z.trk", secret}});
        MakeTree(Served(), {{"a.trk", std::string(30'000'000, 'o')},
                            {"deep/er/z.trk", std::string(secret.size(), 'z')}});
        const OstraServerProcess server(Served());
        RawHttp slow(server.ControlPort());
        slow.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
        while (server.Requests().empty())
            std::this_thread::yield();
        EXPECT_TRUE(Shell("cd 'station one' && " + change));
        const RawHttp::Reply reply = slow.Read();
        EXPECT_FALSE(reply.IsComplete());
        EXPECT_EQ(reply.body.find(secret), std::string::npos);
    }
}

TEST_F(ServerAnswers, archivesTheReplayMode) {
    const OstraServerProcess server(Served(), {"--replay", "on"});
    const std::string on = DataOf(Archive(server).body);
    RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, "{\"enabled\": false}");
    const std::string off = DataOf(Archive(server).body);
    EXPECT_EQ(Restore(server, on).status, 200U);
    EXPECT_TRUE(ReplayOf(server));
    EXPECT_EQ(Restore(server, off).status, 200U);
    EXPECT_FALSE(ReplayOf(server));
}

TEST_F(ServerAnswers, archivesAnEmptyWorkspace) {
    MakeTree(Served(), {});
    const OstraServerProcess server(Served());
    EXPECT_TRUE(ServedTree(server).empty());
}

TEST_F(ServerAnswers, archivesTheCurrentContentOfTheDisk) {
    const OstraServerProcess server(Served());
    ServedTree(server);
    MakeTree(Served(), changed);
    EXPECT_EQ(ServedTree(server), changed);
}

TEST_F(ServerAnswers, readsAndSetsTheReplayMode) {
    const OstraServerProcess server(Served());
    EXPECT_FALSE(ReplayOf(server));
    const RawHttp::Reply on =
        RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, "{\"enabled\": true}");
    EXPECT_EQ(on.status, 200U);
    EXPECT_EQ(on.body, "{}");
    EXPECT_TRUE(ReplayOf(server));
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "PUT", kReplayPath,
                               "\xa1\x67"
                               "enabled\xf4",
                               "application/cbor")
                  .status,
              200U);
    EXPECT_FALSE(ReplayOf(server));
}

TEST_F(ServerAnswers, startsInTheGivenReplayMode) {
    const OstraServerProcess server(Served(), {"--replay", "on"});
    EXPECT_TRUE(ReplayOf(server));
}

TEST_F(ServerAnswers, servesManyRequestsOnOneConnection) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    for (int round = 0; round < 3; ++round) {
        http.Send(RawHttp::Text("GET", "/system/info"));
        EXPECT_EQ(http.Read().status, 200U);
        http.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
        EXPECT_TRUE(http.Read().IsComplete());
    }
    http.Send(RawHttp::Text("GET", kReplayPath) + RawHttp::Text("GET", kReplayPath));
    EXPECT_EQ(http.Read().status, 200U);
    EXPECT_EQ(http.Read().status, 200U);
}

TEST_F(ServerAnswers, closesTheConnectionOnRequest) {
    const OstraServerProcess server(Served());
    RawHttp http(server.ControlPort());
    http.Send("GET /system/info HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(http.Read().status, 200U);
    EXPECT_TRUE(http.Closed());
    RawHttp old(server.ControlPort());
    old.Send("GET /system/info HTTP/1.0\r\n\r\n");
    EXPECT_EQ(old.Read().status, 200U);
    EXPECT_TRUE(old.Closed());
}

TEST_F(ServerAnswers, logsRequestsInOrder) {
    OstraServerProcess server(Served());
    RawHttp::Request(server.ControlPort(), "GET", "/system/info");
    RawHttp::Request(server.ControlPort(), "PUT", kReplayPath, "{\"enabled\": true}");
    RawHttp::Request(server.ControlPort(), "GET", "/no%20such\x1b[31m");
    Archive(server);
    EXPECT_THAT(server.Requests(),
                testing::ElementsAre("GET /system/info 0 200", "PUT /replay/playback 17 200", "- - 0 400",
                                     "POST /system/commands/archive 32 200"));
    EXPECT_EQ(server.Calls().back(), "POST /system/commands/archive");
}

TEST_F(ServerAnswers, logsTwoHundredCharactersOfAPath) {
    OstraServerProcess server(Served());
    const std::string path = "/" + std::string(199, 'p');
    RawHttp::Request(server.ControlPort(), "GET", path);
    RawHttp::Request(server.ControlPort(), "GET", path + "more");
    EXPECT_THAT(server.Requests(), testing::Each("GET " + path + " 0 404"));
    EXPECT_EQ(server.Requests().size(), 2U);
}

TEST_F(ServerAnswers, logsNoRequestAsARemark) {
    OstraServerProcess server(Served());
    RawHttp::Request(server.ControlPort(), "#PUT", kReplayPath);
    EXPECT_THAT(server.Requests(), testing::ElementsAre("?PUT /replay/playback 0 405"));
}

TEST_F(ServerAnswers, logsToTheNamedFile) {
    const OstraServerProcess server(Served(), {"--log", folder.Path("requests.log")});
    RawHttp::Request(server.ControlPort(), "GET", "/system/info");
    EXPECT_EQ(FileContent(folder.Path("requests.log")), "GET /system/info 0 200\n");
    EXPECT_TRUE(server.Requests().empty());
}

} // namespace
