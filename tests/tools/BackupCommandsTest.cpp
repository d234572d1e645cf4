#include "ToolRun.h"

#include "FolderTree.h"
#include "HostileArchive.h"
#include "RunTool.h"
#include "SmallTrack.h"
#include "TarBlocks.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QJsonArray>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kOuterName = "workspaces/Workspace.osws";

std::string TrackContent() {
    return BinaryFile(SmallTrack(PathAcross(0, 3, 0.25, 50)));
}

std::string Workspace(const std::string& more = "") {
    return TarFolder("vdk") + TarFile("vdk/settings.json", "{}") + TarFolder("vdk/ContourPath") +
           TarFile("vdk/ContourPath/part.trk", TrackContent()) + TarFolder("vdk/empty") + more + TarEnd();
}

std::string Backup(const std::string& workspace, const std::string& more = "") {
    return TarFile("info.json", "{\"replay\":true}") + TarFolder("workspaces") +
           TarFile(kOuterName, workspace) + more + TarEnd();
}

class BackupCommands : public testing::Test {
  protected:
    BackupCommands() { WriteFile("a.osbak", Backup(Workspace())); }

    /// The output of "verify" for a damaged backup with this content.
    static std::vector<std::string> ProblemsOf(const std::string& content) {
        WriteFile("b.osbak", content);
        const ToolResult result = RunTrackTool({"verify", "b.osbak"});
        EXPECT_EQ(result.code, 1) << result.errors;
        return result.Lines();
    }

    TemporaryFolder folder;
};

/// The tree of a backup that GNU tar unpacks, workspace included.
std::map<std::string, std::string> Unpacked(const std::string& backup) {
    fs::remove_all("outer");
    fs::remove_all("inner");
    fs::create_directories("outer");
    fs::create_directories("inner");
    EXPECT_EQ(RunTool("tar -xf " + backup + " -C outer && tar -xf outer/" + kOuterName + " -C inner"), "");
    auto tree = FolderTree("inner");
    tree["info.json"] = FileContent("outer/info.json");
    return tree;
}

std::vector<std::string> NamesHere() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator("."))
        names.push_back(entry.path().filename().string());
    return names;
}

TEST_F(BackupCommands, listsTheEntriesOfTheBackupAndItsWorkspace) {
    const ToolResult result = RunTrackTool({"list", "a.osbak"});
    EXPECT_EQ(result.code, 0) << result.errors;
    const std::string workspace = std::to_string(Workspace().size());
    const std::string track = std::to_string(TrackContent().size());
    const auto right = [](const std::string& size) { return std::string(12 - size.size(), ' ') + size; };
    EXPECT_THAT(result.Lines(),
                ElementsAre(right("15") + "  info.json", right("") + "  workspaces/",
                            right(workspace) + "  workspaces/Workspace.osws", right("") + "    vdk/",
                            right("2") + "    vdk/settings.json", right("") + "    vdk/ContourPath/",
                            right(track) + "    vdk/ContourPath/part.trk", right("") + "    vdk/empty/"));
}

TEST_F(BackupCommands, listsAsJson) {
    const auto objects = RunTrackTool({"list", "--json", TestData("station.osbak")}).Objects();
    ASSERT_EQ(objects.size(), 10U);
    EXPECT_EQ(objects[6], (QJsonObject{{QStringLiteral("name"), QStringLiteral("vdk/ContourPath/fault.trk")},
                                       {QStringLiteral("inWorkspace"), true},
                                       {QStringLiteral("folder"), false},
                                       {QStringLiteral("size"), 909234},
                                       {QStringLiteral("permissions"), 0644}}));
}

/// The backup with a damaged header in its workspace, after the track.
std::string DamagedBackup() {
    std::string workspace = Workspace();
    workspace[workspace.find("vdk/empty") + 148] = 'x'; // the checksum
    return Backup(workspace);
}

TEST_F(BackupCommands, listsTheEntriesBeforeTheDamage) {
    WriteFile("cut.osbak", DamagedBackup());
    const ToolResult result = RunTrackTool({"list", "cut.osbak"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.output, AllOf(HasSubstr("info.json"), HasSubstr("vdk/ContourPath/part.trk")));
    EXPECT_EQ(result.errors, "corvane-track list: cut.osbak: workspace: the archive is damaged or cut short "
                             "after vdk/ContourPath/part.trk\n");
}

TEST_F(BackupCommands, verifiesAGoodBackup) {
    const ToolResult result = RunTrackTool({"verify", "a.osbak", TestData("station.osbak")});
    EXPECT_EQ(result.code, 0) << result.output;
    EXPECT_THAT(result.Lines(),
                ElementsAre("a.osbak: good, with 2 files, 1 of them tracks",
                            HasSubstr("station.osbak: good, with 4 files, 2 of them tracks")));
}

TEST_F(BackupCommands, verifyFindsWhatTheEditorCannotUse) {
    EXPECT_THAT(ProblemsOf(TarFile("info.json", "{}") + TarEnd()),
                ElementsAre("b.osbak: no workspaces/Workspace.osws"));
    EXPECT_THAT(ProblemsOf(Backup(TarFolder("vdk") + TarEnd())),
                ElementsAre("b.osbak: no vdk/ContourPath in the workspace"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(TarLink("vdk/link", '2', "settings.json")))),
                ElementsAre("b.osbak: 1 links or special files, which are not unpacked"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(TarFile("../evil", "x")))),
                ElementsAre("b.osbak: ../evil: a name that leads out of the folder it is unpacked into"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(), TarFile("info.json", "{}"))),
                ElementsAre("b.osbak: info.json: more than one file with this name"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(), TarFile("info.json/below", "x"))),
                ElementsAre("b.osbak: Failed to create the directory - info.json/below"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(TarFile("vdk/settings.json/below", "x")))),
                ElementsAre("b.osbak: workspaces/Workspace.osws: Failed to create the directory - "
                            "vdk/settings.json/below"));
    EXPECT_THAT(ProblemsOf("no archive at all"), ElementsAre(HasSubstr("damaged or cut short")));
    EXPECT_THAT(ProblemsOf(""), ElementsAre(HasSubstr("damaged or cut short")));
}

TEST_F(BackupCommands, verifyReportsErrorsOfTracksWithTheirPlace) {
    std::string version = TrackContent();
    version[8] = 2;
    EXPECT_THAT(ProblemsOf(Backup(Workspace(TarFile("vdk/ContourPath/old.trk", version) +
                                            TarFile("vdk/ContourPath/odd.trk", TrackContent() + "x") +
                                            TarFile("vdk/ContourPath/notes.txt", "Info") +
                                            TarFile("vdk/elsewhere.trk", "Info")))),
                ElementsAre("b.osbak: vdk/ContourPath/old.trk: byte 8: version 2, whose layout is unknown"));
    EXPECT_THAT(ProblemsOf(Backup(Workspace(TarFile("vdk/ContourPath/text.trk", "YX,1\n")))),
                testing::Contains("b.osbak: vdk/ContourPath/text.trk: line 2: no section with paths"));
    std::string points = "Segment\nheader\n";
    for (int i = 0; i < 30; ++i)
        points += "1\n";
    const auto lines = ProblemsOf(Backup(Workspace(TarFile("vdk/ContourPath/text.trk", points))));
    EXPECT_EQ(lines.size(), 21U);
    EXPECT_EQ(lines.back(), "b.osbak: vdk/ContourPath/text.trk: and 11 more errors"); // 30 errors, and no map
}

TEST_F(BackupCommands, verifyFindsEveryTruncationAndDamagedHeader) {
    const std::string complete = FileContent("a.osbak");
    for (std::size_t size = 0; size + 1024 < complete.size(); size += 512)
        EXPECT_FALSE(ProblemsOf(complete.substr(0, size)).empty()) << size;
    for (const std::size_t header : {std::size_t{0}, std::size_t{1024}, std::size_t{2048}}) {
        std::string damaged = complete;
        damaged[header + 148] = 'x'; // the checksum
        EXPECT_FALSE(ProblemsOf(damaged).empty()) << header;
    }
}

TEST_F(BackupCommands, verifyAgreesWithTheStrictUnpackingOfHostileWorkspaces) {
    std::vector<std::string> words = {"verify", "--json"};
    const auto archives = HostileArchives();
    for (std::size_t i = 0; i < archives.size(); ++i) {
        words.push_back(std::to_string(i) + ".osbak");
        WriteFile(words.back(), Backup(archives[i].content));
    }
    const auto reports = RunTrackTool(words).Objects();
    ASSERT_EQ(reports.size(), archives.size());
    for (std::size_t i = 0; i < archives.size(); ++i) {
        SCOPED_TRACE(archives[i].name);
        bool isRefused = false; // there are no tracks to check for more
        for (const auto problem : reports[i].value(QLatin1String("problems")).toArray()) {
            const QString text = problem.toObject().value(QLatin1String("text")).toString();
            isRefused = isRefused || !text.startsWith(QLatin1String("no vdk/ContourPath"));
        }
        if (!archives[i].complete) {
            EXPECT_TRUE(isRefused);
        }
    }
    EXPECT_FALSE(fs::exists("evil"));
}

TEST_F(BackupCommands, extractsATrackByItsNameAlone) {
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "part.trk"}).errors, "");
    EXPECT_EQ(FileContent("part.trk"), TrackContent());
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "part.trk", "-o", "other.trk"}).errors, "");
    EXPECT_EQ(FileContent("other.trk"), TrackContent());
    fs::create_directory("here");
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "part.trk", "vdk/settings.json", "-o", "here"}).errors, "");
    EXPECT_EQ(FolderTree("here"),
              (std::map<std::string, std::string>{{"part.trk", TrackContent()}, {"settings.json", "{}"}}));
}

TEST_F(BackupCommands, extractsEntriesBeforeTheDamage) {
    WriteFile("cut.osbak", DamagedBackup());
    const ToolResult result = RunTrackTool({"extract", "cut.osbak", "part.trk"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.errors, HasSubstr("warning: cut.osbak: "));
    EXPECT_EQ(FileContent("part.trk"), TrackContent());
}

TEST_F(BackupCommands, extractsTheCompleteWorkspace) {
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "--all", "-o", "new"}).errors, "");
    EXPECT_EQ(FolderTree("new"),
              (std::map<std::string, std::string>{{"vdk/", ""},
                                                  {"vdk/settings.json", "{}"},
                                                  {"vdk/ContourPath/", ""},
                                                  {"vdk/ContourPath/part.trk", TrackContent()},
                                                  {"vdk/empty/", ""}}));
    EXPECT_THAT(NamesHere(), testing::UnorderedElementsAre("a.osbak", "new"));
}

TEST_F(BackupCommands, extractOverwritesNoFolder) {
    fs::create_directory("mine");
    WriteFile("mine/work", "precious");
    const ToolResult result = RunTrackTool({"extract", "a.osbak", "--all", "-o", "mine"});
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.errors, "corvane-track extract: mine: exists already\n");
    EXPECT_EQ(FileContent("mine/work"), "precious");
}

TEST_F(BackupCommands, extractRefusesImpossibleRequests) {
    const ToolResult missing = RunTrackTool({"extract", "a.osbak", "missing.trk"});
    EXPECT_EQ(missing.code, 3);
    EXPECT_EQ(missing.errors,
              "corvane-track extract: a.osbak: no vdk/ContourPath/missing.trk in the workspace\n");
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak"}).code, 2);
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "--all"}).code, 2);
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "--all", "part.trk", "-o", "new"}).code, 2);
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "../part.trk"}).code, 2);
    EXPECT_EQ(RunTrackTool({"extract", "a.osbak", "part.trk", "part.trk", "-o", "one"}).code, 4);
    EXPECT_THAT(NamesHere(), ElementsAre("a.osbak"));
}

TEST_F(BackupCommands, replacesATrackInTheWorkspace) {
    const auto before = Unpacked("a.osbak");
    const std::string other = BinaryFile(SmallTrack(PathAcross(0, 2, 0.75, 10)));
    WriteFile("new.trk", other);
    EXPECT_EQ(RunTrackTool({"replace", "a.osbak", "part.trk", "new.trk"}).errors, "");
    auto expected = before;
    expected["vdk/ContourPath/part.trk"] = other;
    EXPECT_EQ(Unpacked("a.osbak"), expected);
    EXPECT_EQ(RunTrackTool({"verify", "a.osbak"}).code, 0);
    EXPECT_THAT(NamesHere(), testing::UnorderedElementsAre("a.osbak", "new.trk", "outer", "inner"));
}

TEST_F(BackupCommands, replaceWritesAnotherBackupAndAddsFiles) {
    const std::string before = FileContent("a.osbak");
    WriteFile("notes.txt", "no track");
    const ToolResult unknown =
        RunTrackTool({"replace", "a.osbak", "vdk/notes.txt", "notes.txt", "-o", "b.osbak"});
    EXPECT_EQ(unknown.code, 3);
    EXPECT_THAT(unknown.errors, HasSubstr("no vdk/notes.txt in the workspace; --add"));
    EXPECT_FALSE(fs::exists("b.osbak"));
    EXPECT_EQ(RunTrackTool({"replace", "--add", "a.osbak", "vdk/new/notes.txt", "notes.txt", "-o", "b.osbak"})
                  .errors,
              "");
    EXPECT_EQ(FileContent("a.osbak"), before);
    EXPECT_EQ(Unpacked("b.osbak").at("vdk/new/notes.txt"), "no track");
}

TEST_F(BackupCommands, replaceRefusesATrackThatTheEditorCannotOpen) {
    const std::string before = FileContent("a.osbak");
    WriteFile("bad.trk", TrackContent().substr(0, 100));
    const ToolResult result = RunTrackTool({"replace", "a.osbak", "part.trk", "bad.trk"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.errors, HasSubstr("bad.trk: a height map of 40 x 20 cells takes 1600 bytes"));
    EXPECT_EQ(FileContent("a.osbak"), before);
    EXPECT_EQ(RunTrackTool({"replace", "--force", "a.osbak", "part.trk", "bad.trk"}).code, 0);
    EXPECT_EQ(Unpacked("a.osbak").at("vdk/ContourPath/part.trk"), TrackContent().substr(0, 100));
}

TEST_F(BackupCommands, replaceLeavesADamagedBackupUnchanged) {
    WriteFile("new.trk", TrackContent());
    const std::string complete = FileContent("a.osbak");
    for (const std::string& content :
         {complete.substr(0, complete.size() - 1024), complete.substr(0, 3000),
          Backup(Workspace(TarLink("vdk/link", '2', "settings.json"))), std::string("no archive")}) {
        WriteFile("b.osbak", content);
        const ToolResult result = RunTrackTool({"replace", "b.osbak", "part.trk", "new.trk"});
        EXPECT_EQ(result.code, 3) << result.errors;
        EXPECT_EQ(FileContent("b.osbak"), content);
    }
    EXPECT_THAT(NamesHere(), testing::UnorderedElementsAre("a.osbak", "b.osbak", "new.trk"));
}

} // namespace
