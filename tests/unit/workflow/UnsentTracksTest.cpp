#include "workflow/UnsentTracks.h"

#include "FileSizeLimit.h"
#include "FixedTime.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "workflow/KeptCopies.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Tree = std::map<std::string, std::string>;

const std::string kWorkspace = "./TmpDir Osws";
const std::string kTracks = kWorkspace + "/vdk/Größe";

class UnsentTracksTest : public testing::Test {
  protected:
    UnsentTracksTest() { fs::create_directories(Utf8Path(kTracks)); }

    /// The unsent tracks at the start of a new run.
    UnsentTracks Tracks() { return {copies, kWorkspace, kTracks}; }

    /// The names of the lists that exist.
    [[nodiscard]] std::vector<std::string> Lists() const {
        std::vector<std::string> names;
        for (const auto& [name, content] : FolderTree(kept))
            if (name.starts_with(".unsent-"))
                names.push_back(name);
        return names;
    }

    /// The only list.
    [[nodiscard]] std::string List() const {
        const std::vector<std::string> names = Lists();
        EXPECT_THAT(names, SizeIs(1));
        return kept + "/" + names.at(0);
    }

    TemporaryFolder folder;
    LogCapture log;
    TimeZone zone{"UTC0"};
    std::string kept = folder.Path("data größe/kept");
    KeptCopies copies{kept, {}, [] { return kTime; }};
};

TEST_F(UnsentTracksTest, areRememberedByTheNextRun) {
    {
        UnsentTracks tracks = Tracks();
        EXPECT_TRUE(tracks.IsEmpty());
        tracks.Record("b.trk");
        tracks.Record("größe\n%s.trk");
        tracks.Record("b.trk");
        EXPECT_THAT(tracks.Names(), ElementsAre("b.trk", "größe\n%s.trk"));
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    UnsentTracks tracks = Tracks();
    EXPECT_THAT(tracks.Names(), ElementsAre("b.trk", "größe\n%s.trk"));
    tracks.Forget("größe\n%s.trk");
    tracks.Forget("never recorded.trk");
    EXPECT_THAT(Tracks().Names(), ElementsAre("b.trk"));
}

TEST_F(UnsentTracksTest, areStoredImmediatelyAndPrivately) {
    UnsentTracks tracks = Tracks();
    tracks.Record("a.trk");
    EXPECT_THAT(Tracks().Names(), ElementsAre("a.trk"));
    struct stat state {};
    ASSERT_EQ(stat(List().c_str(), &state), 0);
    EXPECT_EQ(state.st_mode, static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_FALSE(KeptName::IsOne(fs::path(List()).filename().string()));
}

TEST_F(UnsentTracksTest, leaveNoFileWhenEmpty) {
    UnsentTracks tracks = Tracks();
    EXPECT_FALSE(fs::exists(Utf8Path(kept)));
    tracks.Clear();
    EXPECT_FALSE(fs::exists(Utf8Path(kept)));
    tracks.Record("a.trk");
    tracks.Forget("a.trk");
    EXPECT_THAT(FolderTree(kept), IsEmpty());
    tracks.Record("a.trk");
    tracks.Record("b.trk");
    tracks.Clear();
    EXPECT_TRUE(tracks.IsEmpty());
    EXPECT_THAT(FolderTree(kept), IsEmpty());
}

TEST_F(UnsentTracksTest, belongToOneWorkspace) {
    Tracks().Record("a.trk");
    UnsentTracks others(copies, "./TmpDir Other", "./TmpDir Other/vdk");
    EXPECT_TRUE(others.IsEmpty());
    others.Record("b.trk");
    EXPECT_THAT(Lists(), SizeIs(2));
    EXPECT_THAT(Tracks().Names(), ElementsAre("a.trk"));
    // Independent of the spelling of its folder.
    const UnsentTracks same(copies, folder.Path("TmpDir Other/../TmpDir Osws"), kTracks);
    EXPECT_THAT(same.Names(), ElementsAre("a.trk"));
}

TEST_F(UnsentTracksTest, areKeptBeforeTheWorkspaceIsRemoved) {
    WriteFile(kTracks + "/a.trk", "saved");
    WriteFile(kTracks + "/b.trk", "of an earlier run");
    WriteFile(kTracks + "/sent.trk", "sent");
    fs::create_directory(Utf8Path(kTracks + "/folder.trk"));
    Tracks().Record("b.trk");
    UnsentTracks tracks = Tracks();
    for (const char* const name : {"a.trk", "missing.trk", "folder.trk"})
        tracks.Record(name);
    tracks.Keep();
    EXPECT_TRUE(tracks.IsEmpty());
    EXPECT_EQ(FolderTree(kept), (Tree{{kStamp + "a.trk (unsent).trk", "saved"},
                                      {kStamp + "b.trk (unsent).trk", "of an earlier run"}}));
    EXPECT_EQ(FileContent(kTracks + "/a.trk"), "saved");
    EXPECT_TRUE(Tracks().IsEmpty());
}

/// The following steps of the sequence must not depend on it.
TEST_F(UnsentTracksTest, areDroppedEvenWhenTheyCannotBeKept) {
    UnsentTracks tracks = Tracks();
    WriteFile(kTracks + "/a.trk", "saved");
    tracks.Record("a.trk");
    fs::remove_all(Utf8Path(kept));
    WriteFile(kept, "a file");
    static_cast<void>(log.Lines());
    tracks.Keep();
    EXPECT_TRUE(tracks.IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre(StartsWith("ERROR: Failed to keep " + kStamp + "a.trk (unsent).trk"),
                                         AllOf(StartsWith("ERROR: Failed to store the list"),
                                               HasSubstr("Not a directory"))));
}

TEST_F(UnsentTracksTest, stayInMemoryWhenTheyCannotBeStored) {
    WriteFile("file", "");
    KeptCopies nowhere(folder.Path("file/kept"));
    UnsentTracks tracks(nowhere, kWorkspace, kTracks);
    EXPECT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith("ERROR: Ignored"), HasSubstr("Not a directory"))));
    tracks.Record("a.trk");
    EXPECT_THAT(tracks.Names(), ElementsAre("a.trk"));
    EXPECT_THAT(log.Lines(),
                ElementsAre(AllOf(StartsWith("ERROR: Failed to store the list of unsent tracks in " +
                                             folder.Path("file/kept")),
                                  HasSubstr("Not a directory"))));
}

TEST_F(UnsentTracksTest, keepTheOldListOnAFullDisk) {
    UnsentTracks tracks = Tracks();
    tracks.Record("a.trk");
    {
        const FileSizeLimit full(4096); // larger than the log
        tracks.Record(std::string(5000, 'x'));
    }
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("File too large")));
    EXPECT_THAT(Tracks().Names(), ElementsAre("a.trk"));
    EXPECT_THAT(FolderTree(kept), SizeIs(1));
}

TEST_F(UnsentTracksTest, cannotBeStoredInAReadOnlyFolder) {
    fs::create_directory("kept");
    fs::permissions("kept", fs::perms::owner_read | fs::perms::owner_exec);
    KeptCopies readOnly(folder.Path("kept"));
    fs::permissions(".", fs::perms::all);
    const OrdinaryUser user("kept");
    ASSERT_TRUE(user.IsReady());
    UnsentTracks tracks(readOnly, kWorkspace, kTracks);
    EXPECT_THAT(log.Lines(), IsEmpty());
    tracks.Record("a.trk");
    EXPECT_THAT(tracks.Names(), ElementsAre("a.trk"));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Permission denied")));
}

/// The list of a crashed run, damaged before the next one.
class DamagedListTest : public UnsentTracksTest {
  protected:
    DamagedListTest() {
        Tracks().Record("a.trk");
        static_cast<void>(log.Lines());
        content = FileContent(List());
    }

    void ExpectIgnored(const std::string& damaged, const std::string& reason = {}) {
        WriteFile(List(), damaged);
        EXPECT_TRUE(Tracks().IsEmpty());
        EXPECT_THAT(log.Lines(),
                    ElementsAre(AllOf(StartsWith("ERROR: Ignored the list of unsent tracks .unsent-"),
                                      HasSubstr(reason))));
    }

    std::string content;
};

TEST_F(DamagedListTest, isIgnoredWhenTruncatedAtAnyByte) {
    for (std::size_t size = 0; size < content.size(); ++size)
        ExpectIgnored(content.substr(0, size));
}

TEST_F(DamagedListTest, isIgnoredWhenAnyByteIsChanged) {
    for (std::size_t at = 0; at < content.size(); ++at) {
        std::string flipped = content;
        flipped[at] = static_cast<char>(~flipped[at]);
        ExpectIgnored(flipped);
    }
}

TEST_F(DamagedListTest, isIgnoredWhenItBelongsToAnother) {
    UnsentTracks others(copies, "./TmpDir Other", "./TmpDir Other/vdk");
    const std::string mine = List();
    others.Record("b.trk");
    std::string foreign;
    for (const std::string& name : Lists())
        if (kept + "/" + name != mine)
            foreign = FileContent(kept + "/" + name);
    others.Clear();
    ExpectIgnored(foreign, "it belongs to another workspace");
    ExpectIgnored("precious notes", "it is no such file");
}

TEST_F(DamagedListTest, isReplacedWithTheNextTrack) {
    WriteFile(List(), "nothing of ours");
    UnsentTracks tracks = Tracks();
    tracks.Record("b.trk");
    EXPECT_THAT(Tracks().Names(), ElementsAre("b.trk"));
}

TEST_F(DamagedListTest, isIgnoredWhenItIsNotAFile) {
    const std::string list = List();
    fs::remove(Utf8Path(list));
    fs::create_directory(Utf8Path(list));
    EXPECT_TRUE(Tracks().IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Is a directory")));
}

/// A valid list whose names would lead out of the track folder.
TEST_F(DamagedListTest, isIgnoredWhenItHoldsPaths) {
    for (const std::string& name : {std::string(), std::string("."), std::string(".."),
                                    std::string("../a.trk"), std::string("a\0b", 3)}) {
        fs::remove_all(Utf8Path(kept));
        UnsentTracks tracks = Tracks();
        tracks.Record(name);
        ExpectIgnored(FileContent(List()), "no file name");
    }
}

} // namespace
