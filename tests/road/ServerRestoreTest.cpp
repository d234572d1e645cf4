#include "ServerTest.h"
#include "TarBlocks.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include <sys/resource.h>

namespace {

using testing::HasSubstr;

class ServerRestore : public ServerTest {
  protected:
    /// Everything about the server is as before the refused restore.
    void ExpectRefused(const OstraServerProcess& server, const std::string& archive) const {
        const RawHttp::Reply reply = Restore(server, archive);
        EXPECT_EQ(reply.status, 422U) << reply.body;
        EXPECT_THAT(reply.body, HasSubstr("\"error\":\""));
        EXPECT_THAT(reply.body, testing::Not(HasSubstr(folder.Path(""))));
        EXPECT_EQ(TreeOf(Served()), original);
        EXPECT_EQ(Leftovers(), "");
    }

    static std::string Replay(const OstraServerProcess& server) {
        return RawHttp::Request(server.ControlPort(), "GET", kReplayPath).body;
    }

    /// Waits until what an earlier restore replaced has been removed.
    void AwaitNoLeftovers() const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!Leftovers().empty() && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        EXPECT_EQ(Leftovers(), "");
    }
};

TEST_F(ServerRestore, putsTheArchivedWorkspaceInPlace) {
    const OstraServerProcess server(Served());
    const RawHttp::Reply reply = Restore(server, Backup(changed));
    EXPECT_EQ(reply.status, 200U) << reply.body;
    EXPECT_EQ(reply.body, "{}");
    EXPECT_EQ(TreeOf(Served()), changed);
    EXPECT_EQ(ServedTree(server), changed);
    AwaitNoLeftovers();
}

TEST_F(ServerRestore, takesBackItsOwnArchive) {
    const OstraServerProcess server(Served());
    const std::string archive = DataOf(Archive(server).body);
    MakeTree(Served(), changed);
    EXPECT_EQ(Restore(server, archive).status, 200U);
    EXPECT_EQ(TreeOf(Served()), original);
}

TEST_F(ServerRestore, takesTheArchiveOfARealStation) {
    const OstraServerProcess server(Served());
    EXPECT_EQ(Restore(server, FileContent(TestData("station.osbak"))).status, 200U);
    EXPECT_EQ(FileContent(Served() + "/vdk/ContourPath/fault.trk"), FileContent(TestData("fault.trk")));
    EXPECT_EQ(TreeOf(Served()).count("vdk/empty/"), 1U);
}

TEST_F(ServerRestore, takesArchivesOfOtherTools) {
    const OstraServerProcess server(Served());
    const std::string longFolder = "vdk/" + std::string(90, 'd') + "/";
    changed[longFolder] = "";
    changed[longFolder + std::string(90, 'l') + ".trk"] = "long name";
    for (const std::string format : {"gnu", "ustar", "pax"}) {
        MakeTree(Served(), original);
        EXPECT_EQ(Restore(server, BackupAround(Tarred(changed, "--format=" + format), "{}")).status, 200U)
            << format;
        EXPECT_EQ(TreeOf(Served()), changed) << format;
    }
    MakeTree(folder.Path("plain"), changed);
    EXPECT_TRUE(Shell("bsdtar -cf bsd.tar -C plain ."));
    MakeTree(Served(), original);
    EXPECT_EQ(Restore(server, BackupAround(FileContent(folder.Path("bsd.tar")), "")).status, 200U);
    EXPECT_EQ(TreeOf(Served()), changed);
}

TEST_F(ServerRestore, keepsTheFoldersPermissions) {
    std::filesystem::permissions(Served(), std::filesystem::perms(0751));
    const OstraServerProcess server(Served());
    EXPECT_EQ(Restore(server, Backup(changed)).status, 200U);
    EXPECT_EQ(std::filesystem::status(Served()).permissions(), std::filesystem::perms(0751));
}

TEST_F(ServerRestore, replayModeFollowsTheArchive) {
    const OstraServerProcess server(Served());
    EXPECT_EQ(Restore(server, Backup(changed, "{\"serial\": \"1\", \"replay\": true}")).status, 200U);
    EXPECT_EQ(Replay(server), "{\"enabled\":true}");
    EXPECT_EQ(Restore(server, Backup(changed, "{\"serial\": \"1\"}")).status, 200U);
    EXPECT_EQ(Replay(server), "{\"enabled\":true}");
    EXPECT_EQ(Restore(server, Backup(changed, "{\"replay\": false}")).status, 200U);
    EXPECT_EQ(Replay(server), "{\"enabled\":false}");
}

TEST_F(ServerRestore, replayModeIsWhatTheOptionSays) {
    const OstraServerProcess server(Served(), {"--restore-sets-replay", "on"});
    EXPECT_EQ(Restore(server, "no archive").status, 422U);
    EXPECT_EQ(Replay(server), "{\"enabled\":false}");
    EXPECT_EQ(Restore(server, Backup(changed, "{\"replay\": false}")).status, 200U);
    EXPECT_EQ(Replay(server), "{\"enabled\":true}");
}

TEST_F(ServerRestore, refusesAFolderWithoutTheOneAbove) {
    const OstraServerProcess server(Served());
    ExpectRefused(server, BackupAround(TarFolder("missing/vdk") + TarEnd(), "{}"));
}

TEST_F(ServerRestore, refusesAnArchiveCutAtAnyBlock) {
    const OstraServerProcess server(Served());
    original = changed;
    MakeTree(Served(), original);
    // GNU tar fills the last record with zero blocks; the archive proper ends with two of them.
    const std::string inner = Tarred({{"vdk/ContourPath/a.trk", "cut me"}});
    std::string whole = BackupAround(inner, "{}");
    const std::size_t innerAt = whole.find("workspaces/Workspace.osws") + 512;
    ASSERT_EQ(whole.compare(innerAt, inner.size(), inner), 0);
    whole.resize(innerAt + inner.size() + 1024);
    for (std::size_t size = 0; size + 512 <= whole.size(); size += 512) {
        SCOPED_TRACE(size);
        ExpectRefused(server, whole.substr(0, size));
    }
    EXPECT_EQ(Restore(server, whole).status, 200U);
}

TEST_F(ServerRestore, refusesAnInnerArchiveCutAtAnyBlock) {
    const OstraServerProcess server(Served());
    std::string inner = Tarred({{"vdk/ContourPath/a.trk", std::string(1500, 'a')}});
    inner.resize(inner.find_last_not_of('\0') / 512 * 512 + std::size_t{3} * 512);
    for (std::size_t size = 0; size + 512 <= inner.size(); size += 512) {
        SCOPED_TRACE(size);
        ExpectRefused(server, BackupAround(inner.substr(0, size), "{}"));
    }
}

TEST_F(ServerRestore, refusesDamagedHeaders) {
    const OstraServerProcess server(Served());
    const std::string inner = Tarred(changed);
    for (std::size_t block = 0; block < 3; ++block) {
        SCOPED_TRACE(block);
        std::string damaged = inner;
        damaged[block * 512 + 150] = static_cast<char>(damaged[block * 512 + 150] ^ 1);
        ExpectRefused(server, BackupAround(damaged, "{}"));
    }
}

TEST_F(ServerRestore, refusesUnsafeNames) {
    const OstraServerProcess server(Served());
    for (const std::string name : {"../outside.trk", "/tmp/outside.trk", "vdk/../../outside.trk",
                                   "C:/outside.trk", "vdk\\..\\..\\outside.trk"}) {
        SCOPED_TRACE(name);
        const std::string rename = "--absolute-names --transform='flags=r;s|^vdk/ContourPath/a.trk$|" +
                                   Tree::value_type(name, "").first + "|'";
        Tree tree{{"vdk/ContourPath/a.trk", "bad"}, {"vdk/ContourPath/b.trk", "good"}};
        std::string option = rename;
        for (std::size_t at = 0; (at = option.find('\\', at)) != std::string::npos; at += 2)
            option.insert(at, "\\");
        ExpectRefused(server, BackupAround(Tarred(tree, option), "{}"));
        Tree outer{{"vdk/ContourPath/a.trk", "bad"}, {"workspaces/Workspace.osws", Tarred(changed)}};
        ExpectRefused(server, Tarred(outer, option));
    }
    EXPECT_FALSE(std::filesystem::exists(folder.Path("outside.trk")));
    EXPECT_FALSE(std::filesystem::exists("/tmp/outside.trk"));
}

TEST_F(ServerRestore, refusesLinksAndSpecialFiles) {
    const OstraServerProcess server(Served());
    const std::vector<std::string> made{"ln -s /etc/passwd tarred/vdk/link", "ln -s .. tarred/vdk/up",
                                        "ln tarred/vdk/ContourPath/new.trk tarred/vdk/hard",
                                        "mkfifo tarred/vdk/pipe"};
    for (const std::string& command : made) {
        SCOPED_TRACE(command);
        MakeTree(folder.Path("tarred"), changed);
        EXPECT_TRUE(Shell(command + " && tar -cf linked.tar -C tarred vdk"));
        ExpectRefused(server, BackupAround(FileContent(folder.Path("linked.tar")), "{}"));
    }
}

TEST_F(ServerRestore, refusesLinksAndSpecialFilesBesideTheWorkspaceToo) {
    const OstraServerProcess server(Served());
    const std::string osws = Tarred(changed);
    for (const std::string command :
         {"ln -s /etc/passwd tarred/link", "ln tarred/info.json tarred/hard", "mkfifo tarred/pipe"}) {
        SCOPED_TRACE(command);
        MakeTree(folder.Path("tarred"), {{"info.json", "{}"}, {"workspaces/Workspace.osws", osws}});
        EXPECT_TRUE(Shell(command + " && tar -cf linked.tar -C tarred $(ls -A tarred)"));
        ExpectRefused(server, FileContent(folder.Path("linked.tar")));
    }
}

TEST_F(ServerRestore, aDiskThatFailsIsTheServersFailureNotTheArchives) {
    // Whoever starts with this signal ignored gets an error for a file beyond its limit.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    const OstraServerProcess server(Served());
    std::signal(SIGXFSZ, before);
    const rlimit limit{100'000, 100'000};
    ASSERT_EQ(prlimit(server.Pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
    Tree large = changed;
    large["vdk/ContourPath/large.trk"] = std::string(1'000'000, 'L');
    const RawHttp::Reply reply = Restore(server, Backup(large));
    EXPECT_EQ(reply.status, 500U) << reply.body;
    EXPECT_THAT(reply.body, testing::Not(HasSubstr(folder.Path(""))));
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(Leftovers(), "");
    EXPECT_EQ(Restore(server, Backup(changed)).status, 200U);
}

TEST_F(ServerRestore, refusesToWriteThroughALinkInTheArchive) {
    const OstraServerProcess server(Served());
    MakeTree(folder.Path("one"), {});
    MakeTree(folder.Path("two"), {{"vdk/ContourPath/evil.trk", "evil"}});
    MakeTree(folder.Path("victim"), {});
    EXPECT_TRUE(Shell("mkdir one/vdk && ln -s '" + folder.Path("victim") +
                      "' one/vdk/ContourPath && "
                      "tar -cf chain.tar -C one vdk && tar -rf chain.tar -C two vdk/ContourPath/evil.trk"));
    ExpectRefused(server, BackupAround(FileContent(folder.Path("chain.tar")), "{}"));
    EXPECT_TRUE(TreeOf(folder.Path("victim")).empty());
}

TEST_F(ServerRestore, refusesWhatIsNoBackup) {
    const OstraServerProcess server(Served());
    ExpectRefused(server, "");
    ExpectRefused(server, "not a tar archive at all");
    ExpectRefused(server, std::string(10240, '\0'));
    ExpectRefused(server, std::string(10240, '\xff'));
    ExpectRefused(server, Tarred({{"info.json", "{}"}}));
    ExpectRefused(server, BackupAround("not a tar archive", "{}"));
    ExpectRefused(server, BackupAround(std::string(1024, '\0'), "{}"));
    ExpectRefused(server, Backup({{"elsewhere/a.trk", "a"}}));
    ExpectRefused(server, Backup(changed, "not json"));
    ExpectRefused(server, Backup(changed, "{\"long\": \"" + std::string(70000, 'x') + "\"}"));
    MakeTree(folder.Path("twice"), {{"workspaces/Workspace.osws", Tarred(changed)}});
    EXPECT_TRUE(Shell("tar -cf twice.tar -C twice workspaces/Workspace.osws && "
                      "tar -rf twice.tar -C twice workspaces/Workspace.osws"));
    ExpectRefused(server, FileContent(folder.Path("twice.tar")));
    MakeTree(folder.Path("twice"), {{"info.json", "{}"}, {"workspaces/Workspace.osws", Tarred(changed)}});
    EXPECT_TRUE(Shell("tar -cf twice.tar -C twice info.json workspaces/Workspace.osws && "
                      "tar -rf twice.tar -C twice info.json"));
    ExpectRefused(server, FileContent(folder.Path("twice.tar")));
}

TEST_F(ServerRestore, notesOf64KiBAreTheLongest) {
    const OstraServerProcess server(Served());
    const std::string notes = R"({"replay": true})";
    const std::size_t room = std::size_t{64} * 1024 - notes.size();
    ExpectRefused(server, Backup(changed, notes + std::string(room + 1, ' ')));
    EXPECT_EQ(Restore(server, Backup(changed, notes + std::string(room, ' '))).status, 200U);
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", kReplayPath).body, R"({"enabled":true})");
}

TEST_F(ServerRestore, anArchiveBeingSentStaysWholeWhileTheWorkspaceIsReplaced) {
    original["vdk/ContourPath/large.trk"] = std::string(30'000'000, 'o');
    MakeTree(Served(), original);
    const OstraServerProcess server(Served());
    RawHttp slow(server.ControlPort());
    slow.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
    while (server.Requests().empty())
        std::this_thread::yield();
    EXPECT_EQ(Restore(server, Backup(changed)).status, 200U);
    const RawHttp::Reply reply = slow.Read();
    EXPECT_TRUE(reply.Whole());
    WriteFile(folder.Path("slow.tar"), DataOf(reply.body));
    EXPECT_TRUE(
        Shell("mkdir s s/in && tar -xf slow.tar -C s && tar -xf s/workspaces/Workspace.osws -C s/in"));
    EXPECT_EQ(TreeOf(folder.Path("s/in")), original);
    EXPECT_EQ(ServedTree(server), changed);
    AwaitNoLeftovers();
}

TEST_F(ServerRestore, manyClientsAtOnceSeeOneWorkspaceOrTheOther) {
    const OstraServerProcess server(Served());
    const std::string first = Backup(original);
    const std::string second = Backup(changed);
    std::atomic<int> strange = 0;
    const auto read = [&] {
        for (int round = 0; round < 20; ++round) {
            const RawHttp::Reply reply = Archive(server);
            const bool isFirst = reply.body.find("first") != std::string::npos;
            const bool isSecond = reply.body.find("second") != std::string::npos;
            strange += !reply.Whole() || isFirst == isSecond ? 1 : 0;
        }
    };
    const auto write = [&](const std::string& archive) {
        for (int round = 0; round < 20; ++round)
            strange += Restore(server, archive).status != 200 ? 1 : 0;
    };
    {
        std::vector<std::jthread> clients;
        clients.reserve(6);
        for (int i = 0; i < 4; ++i)
            clients.emplace_back(read);
        clients.emplace_back([&] { write(first); });
        clients.emplace_back([&] { write(second); });
    }
    EXPECT_EQ(strange, 0);
    const Tree end = TreeOf(Served());
    EXPECT_TRUE(end == original || end == changed);
    AwaitNoLeftovers();
}

TEST_F(ServerRestore, aKillAtAnyMomentLeavesTheOldWorkspaceOrTheNewOne) {
    for (int i = 0; i < 40; ++i)
        changed["vdk/ContourPath/" + std::to_string(i) + ".trk"] =
            std::string(20000, static_cast<char>('a' + i % 26));
    const std::string body = RestoreBody(Backup(changed));
    int replaced = 0;
    constexpr int kRounds = 40;
    OstraServerProcess server(Served());
    for (int round = 0; round < kRounds; ++round) {
        MakeTree(Served(), original);
        const std::string request = RawHttp::Text("POST", kRestorePath, body, "application/cbor");
        RawHttp http(server.ControlPort());
        http.Send(request);
        // From right after the last byte until well after the reply, in steps of a quarter of a millisecond.
        std::this_thread::sleep_for(std::chrono::microseconds(250 * round));
        server.Kill();
        const std::string between = Leftovers();
        server.Restart();
        const Tree tree = TreeOf(Served());
        EXPECT_TRUE(tree == original || tree == changed) << "round " << round;
        EXPECT_EQ(Leftovers(), "") << "round " << round << " left " << between;
        replaced += tree == changed ? 1 : 0;
    }
    RecordProperty("replaced", replaced);
}

TEST_F(ServerRestore, aWorkspaceLeftAsideByAKillIsPutBackAtTheNextStart) {
    std::filesystem::rename(Served(), folder.Path(".station one.ostra-old"));
    MakeTree(folder.Path(".station one.ostra-new-abcdef/workspace"), changed);
    const OstraServerProcess server(Served());
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(Leftovers(), "");
}

TEST_F(ServerRestore, startRemovesWhatAKillLeftAndNothingElse) {
    MakeTree(folder.Path(".station one.ostra-old"), changed);
    MakeTree(folder.Path(".station one.ostra-new-abcdef"), changed);
    MakeTree(folder.Path("station one.ostra-new-abcdef"), changed);
    MakeTree(folder.Path("other"), changed);
    EXPECT_TRUE(Shell("ln -s \"$PWD/other\" '.station one.ostra-new-link1'"));
    const OstraServerProcess server(Served());
    EXPECT_EQ(Leftovers(), "");
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_EQ(TreeOf(folder.Path("other")), changed);
    EXPECT_EQ(TreeOf(folder.Path("station one.ostra-new-abcdef")), changed);
}

} // namespace
