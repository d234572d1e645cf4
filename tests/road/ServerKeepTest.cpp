#include "ServerTest.h"

#include <algorithm>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

// A folder is served by one server at a time, and its contents before the last restores are kept.

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ServerKeep : public ServerTest {
  protected:
    /// Runs the server's program. @return its exit code; what it says is in "said" and "error"
    [[nodiscard]] int Run(const std::string& options) const {
        const std::string words = "'" + OstraServerProcess::Program() +
                                  "' --workspace 'station one' --port 0 " + "--discovery-port 0 " + options +
                                  " > said 2> error; echo $? > code";
        EXPECT_TRUE(Shell(words));
        return std::stoi(FileContent(folder.Path("code")));
    }
    /// The contents that are kept, as the program lists them.
    [[nodiscard]] std::vector<std::string> Kept() const {
        EXPECT_EQ(Run("--list-kept"), 0) << FileContent(folder.Path("error"));
        std::vector<std::string> times;
        std::istringstream said(FileContent(folder.Path("said")));
        for (std::string time; std::getline(said, time);)
            times.push_back(time);
        return times;
    }
    [[nodiscard]] std::string PathOf(const std::string& time) const {
        return folder.Path(".station one.ostra-kept-" + time);
    }
    /// A workspace that says its number.
    static Tree Numbered(int number) {
        return {{"vdk/", ""}, {"vdk/ContourPath/", ""}, {"vdk/ContourPath/a.trk", std::to_string(number)}};
    }
    void RestoreNumbered(const OstraServerProcess& server, int count) const {
        for (int i = 1; i <= count; ++i)
            EXPECT_EQ(Restore(server, Backup(Numbered(i))).status, 200U);
    }
};

TEST_F(ServerKeep, aSecondServerOnTheFolderTouchesNothingAndEnds) {
    for (int i = 0; i < 200; ++i)
        changed["vdk/ContourPath/" + std::to_string(i) + ".trk"] = std::string(20'000, 'x');
    const std::string text =
        RawHttp::Text("POST", kRestorePath, RestoreBody(Backup(changed)), "application/cbor");
    const OstraServerProcess server(Served());
    for (int round = 0; round < 5; ++round) {
        MakeTree(Served(), original);
        RawHttp http(server.ControlPort());
        http.Send(text.substr(0, text.size() / 2));
        while (Leftovers().find(".ostra-new-") == std::string::npos)
            std::this_thread::yield();
        EXPECT_EQ(Run(""), 1);
        EXPECT_THAT(FileContent(folder.Path("error")), HasSubstr("another ostra-server uses "));
        http.Send(text.substr(text.size() / 2));
        EXPECT_EQ(http.Read().status, 200U);
        EXPECT_EQ(TreeOf(Served()), changed);
    }
}

TEST_F(ServerKeep, aPortThatIsTakenIsNamedAndNothingIsTouchedBefore) {
    const OstraServerProcess other(folder.Path("."));
    MakeTree(folder.Path(".station one.ostra-new-abcdef"), changed);
    const std::string program = "'" + OstraServerProcess::Program() + "' --workspace 'station one' ";
    const std::string port = std::to_string(other.ControlPort());
    EXPECT_TRUE(Shell(program + "--discovery-port 0 --port " + port + " 2> error; test $? = 1"));
    EXPECT_THAT(FileContent(folder.Path("error")),
                HasSubstr("cannot listen on 127.0.0.1 port " + port + " (TCP): Address already in use"));
    const std::string discovery = std::to_string(other.DiscoveryPort());
    EXPECT_TRUE(Shell(program + "--port 0 --discovery-port " + discovery + " 2> error; test $? = 1"));
    EXPECT_THAT(FileContent(folder.Path("error")),
                HasSubstr("cannot listen on 127.0.0.1 port " + discovery + " (UDP): Address already in use"));
    EXPECT_THAT(Leftovers(), HasSubstr(".station one.ostra-new-abcdef"));
}

TEST_F(ServerKeep, theLockOfAServerThatWasKilledDoesNotMatter) {
    OstraServerProcess server(Served());
    server.Kill();
    EXPECT_TRUE(fs::exists(folder.Path(".station one.ostra-lock")));
    server.Restart();
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/system/info").status, 200U);
    EXPECT_EQ(server.Stop(), 0);
}

TEST_F(ServerKeep, aRestoreThatLostAPartOfWhatItUnpackedIsNotDone) {
    for (int i = 0; i < 50; ++i)
        changed["vdk/ContourPath/" + std::to_string(i) + ".trk"] = std::string(20'000, 'x');
    const std::string text =
        RawHttp::Text("POST", kRestorePath, RestoreBody(Backup(changed)), "application/cbor");
    const OstraServerProcess server(Served());
    for (const std::string lost : {"workspace/vdk/ContourPath/1.trk", "workspace", ""}) {
        SCOPED_TRACE(lost);
        RawHttp http(server.ControlPort());
        http.Send(text.substr(0, text.size() - 1));
        // The last byte is one of the outer archive's end: by then all files are unpacked.
        const auto unpacked = [&] {
            return Shell("test -e .station\\ one.ostra-new-*/workspace/vdk/ContourPath/new.trk 2> error");
        };
        while (!unpacked())
            std::this_thread::yield();
        EXPECT_TRUE(Shell("rm -rf .station\\ one.ostra-new-*/" + lost));
        http.Send(text.substr(text.size() - 1));
        EXPECT_EQ(http.Read().status, 500U);
        EXPECT_EQ(TreeOf(Served()), original);
    }
}

TEST_F(ServerKeep, theLastThreeContentsAreKept) {
    const OstraServerProcess server(Served());
    RestoreNumbered(server, 5);
    const std::vector<std::string> kept = Kept();
    ASSERT_EQ(kept.size(), 3U);
    EXPECT_TRUE(std::is_sorted(kept.rbegin(), kept.rend()));
    for (std::size_t i = 0; i < kept.size(); ++i) {
        EXPECT_THAT(kept[i], testing::MatchesRegex("[0-9]{8}T[0-9]{6}Z(-[0-9]{3})?"));
        EXPECT_EQ(TreeOf(PathOf(kept[i])), Numbered(4 - static_cast<int>(i)));
    }
    EXPECT_EQ(ServedTree(server), Numbered(5)) << "what is kept is not served";
}

TEST_F(ServerKeep, asManyAreKeptAsAskedFor) {
    {
        const OstraServerProcess server(Served(), {"--keep", "0"});
        RestoreNumbered(server, 2);
    }
    EXPECT_TRUE(Kept().empty());
    {
        const OstraServerProcess server(Served(), {"--keep", "6"});
        RestoreNumbered(server, 4);
    }
    EXPECT_EQ(Kept().size(), 4U);
    {
        const OstraServerProcess server(Served(), {"--keep", "1"});
        EXPECT_EQ(Kept().size(), 1U) << "a start removes what is no longer to be kept";
    }
}

TEST_F(ServerKeep, aKeptContentIsPutBackAndTheOtherOneKept) {
    {
        const OstraServerProcess server(Served());
        RestoreNumbered(server, 2);
        EXPECT_EQ(Run("--put-back " + Kept().back()), 1) << "a server uses the folder";
    }
    EXPECT_EQ(TreeOf(Served()), Numbered(2));
    EXPECT_EQ(Run("--put-back " + Kept().back()), 0) << FileContent(folder.Path("error"));
    EXPECT_EQ(TreeOf(Served()), original);
    ASSERT_EQ(Kept().size(), 2U);
    EXPECT_THAT(FileContent(folder.Path("said")), HasSubstr(Kept().front()));
    EXPECT_EQ(TreeOf(PathOf(Kept().front())), Numbered(2));
    EXPECT_EQ(Run("--put-back " + Kept().front()), 0);
    EXPECT_EQ(TreeOf(Served()), Numbered(2));
}

TEST_F(ServerKeep, onlyWhatIsKeptIsPutBack) {
    MakeTree(folder.Path("elsewhere"), changed);
    for (const std::string name : {"20200101T000000Z", "/../elsewhere", "../elsewhere", "''"}) {
        EXPECT_EQ(Run("--put-back " + name), 1) << name;
        EXPECT_EQ(TreeOf(Served()), original) << name;
    }
    EXPECT_EQ(Run("--put-back x --list-kept"), 2);
}

TEST_F(ServerKeep, anArchiveBeingSentStaysWholeWhenItsContentIsNoLongerKept) {
    original["vdk/ContourPath/large.trk"] = std::string(30'000'000, 'o');
    MakeTree(Served(), original);
    const OstraServerProcess server(Served(), {"--keep", "1"});
    RawHttp slow(server.ControlPort());
    slow.Send(RawHttp::Text("POST", kArchivePath, kArchiveBody));
    while (server.Requests().empty())
        std::this_thread::yield();
    RestoreNumbered(server, 3);
    EXPECT_TRUE(slow.Read().Whole());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (Kept().size() > 1 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_EQ(Kept().size(), 1U);
}

TEST_F(ServerKeep, aWorkspaceThatAKillLeftBesideIsKept) {
    {
        OstraServerProcess server(Served());
        RestoreNumbered(server, 1);
    }
    // As a kill leaves it right after the exchange: the mark names another folder than the tree.
    MakeTree(folder.Path(".station one.ostra-new-abcdef"), {{"new", "1"}, {"workspace/a.trk", "old"}});
    MakeTree(folder.Path(".station one.ostra-old"), {{"b.trk", "older"}});
    {
        const OstraServerProcess server(Served());
        EXPECT_EQ(Leftovers(), "");
    }
    ASSERT_EQ(Kept().size(), 3U);
    EXPECT_EQ(TreeOf(PathOf(Kept()[0])), (Tree{{"a.trk", "old"}}));
    EXPECT_EQ(TreeOf(PathOf(Kept()[1])), (Tree{{"b.trk", "older"}}));
}

} // namespace
