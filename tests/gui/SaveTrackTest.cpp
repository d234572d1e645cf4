#include "OrdinaryUser.h"
#include "TrackOperationsTest.h"

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The operation "Save" on a track of the workspace.
class SaveTrack : public TrackOperationsTest {};

TEST_F(SaveTrack, asksForALoadFirst) {
    for (const char* operation : {"Save", "Save As"}) {
        answers.note = [this] { return find<QComboBox>("comboBox_operation").currentText(); };
        operate(operation);
        const std::vector<SeenBox> boxes = answers.takeBoxes();
        ASSERT_THAT(boxes, SizeIs(1)) << operation;
        EXPECT_EQ(boxes[0].title, QStringLiteral("Error"));
        EXPECT_EQ(boxes[0].text.toStdString(), kNoTrack);
        EXPECT_EQ(boxes[0].underneath, QStringLiteral("Normal"));
        expectNormal();
    }
    EXPECT_EQ(status(), "");
    EXPECT_THAT(answers.takeFileDialogs(), IsEmpty());
}

TEST_F(SaveTrack, savesABinaryWorkspaceTrackInPlace) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    edit();
    fs::permissions(kTracks + "b.trk",
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "b.trk");
    const independent::Track saved = independent::ReadBinary(FileContent(kTracks + "b.trk"));
    EXPECT_EQ(saved.cells, track.cells);
    // X and Y are in world units: x times the image's width times the resolution, plus the offset.
    EXPECT_DOUBLE_EQ(saved.segments[0].x, track.segments[0].relativeX * 40 * 0.5 + 10);
    EXPECT_DOUBLE_EQ(saved.segments[0].y, track.segments[0].relativeY * 20 * 0.25 + 20);
    ASSERT_THAT(saved.rulers, Not(IsEmpty()));
    EXPECT_DOUBLE_EQ(saved.rulers[0].width, 110 * 0.25);
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
    EXPECT_EQ(fs::status(kTracks + "b.trk").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(text("label_fileName"), "b.trk");
    expectNormal();
    expectNoBox();
}

TEST_F(SaveTrack, savesATextWorkspaceTrackAsBinary) {
    openWorkspace();
    loadFromWorkspace("A.trk");
    edit();
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "A.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
    operate("Save"); // now from a binary original
    expectEdited(kTracks + "A.trk");
}

TEST_F(SaveTrack, computesTheRulerEvenWhenItIsHidden) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    click("pushButton_getRuler");
    operate("Save");
    EXPECT_THAT(independent::ReadBinary(FileContent(kTracks + "b.trk")).rulers, Not(IsEmpty()));
}

TEST_F(SaveTrack, savesDespiteAnOldTemporaryTrack) {
    openWorkspace();
    WriteFile("temp.trk", "left over");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
}

TEST_F(SaveTrack, doesNotFollowATemporaryTrackThatIsALink) {
    openWorkspace();
    WriteFile(folder.Path("precious"), "kept");
    fs::create_symlink(folder.Path("precious"), "temp.trk");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_EQ(FileContent(folder.Path("precious")), "kept");
    EXPECT_FALSE(fs::is_symlink("temp.trk"));
    EXPECT_FALSE(fs::is_symlink(kTracks + "b.trk"));
}

TEST_F(SaveTrack, readOnlyTrackStaysUnchanged) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    fs::permissions(kTracks + "b.trk",
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    edit();
    ASSERT_EQ(::chmod("TmpDirOsws", 0755), 0);                  // only its owner may enter it
    for (const std::string& own : {kTracks, kTracks + "b.trk"}) // the user owns all of it
        ASSERT_TRUE(OrdinaryUser(own.c_str()).IsReady());
    ASSERT_EQ(::chown((kTracks + "b.trk").c_str(), static_cast<uid_t>(-1), getegid()), 0);
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        operate("Save");
    }
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(status(), "Load successfully.");
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_EQ(paths()[0].lengths[0], 33); // the edit is kept
    fs::permissions(kTracks + "b.trk", fs::perms::owner_write, fs::perm_options::add);
    operate("Save");
    expectEdited(kTracks + "b.trk");
}

TEST_F(SaveTrack, keepsTheOldFileWhenItFails) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    fs::create_directories("temp.trk/in the way");
    edit();
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    fs::remove_all("temp.trk");
    operate("Save");
    expectEdited(kTracks + "b.trk");
}

TEST_F(SaveTrack, failsForARemovedTrackAndCreatesNothing) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        fs::remove(kTracks + name);
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_FALSE(fs::exists(kTracks + name)) << name;
        EXPECT_FALSE(fs::exists("temp.trk")) << name;
        expectNormal();
    }
}

TEST_F(SaveTrack, doesNotReplaceADamagedTrackByAnEmptyOne) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        WriteFile(kTracks + name, "damaged");
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_EQ(FileContent(kTracks + name), "damaged") << name;
        EXPECT_FALSE(fs::exists("temp.trk")) << name;
    }
}

TEST_F(SaveTrack, doesNotReplaceATruncatedTrack) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        const std::string cut = FileContent(kTracks + name).substr(0, 900); // within the height map
        WriteFile(kTracks + name, cut);
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_EQ(FileContent(kTracks + name), cut) << name;
    }
}

TEST_F(SaveTrack, doesNotReplaceATextTrackThatLostItsAnchorAndPaths) {
    openWorkspace();
    loadFromWorkspace("A.trk");
    const std::string complete = FileContent(kTracks + "A.trk");
    const std::size_t mapEnd = complete.find("End", complete.find("YX"));
    ASSERT_NE(mapEnd, std::string::npos);
    WriteFile(kTracks + "A.trk", complete.substr(0, mapEnd));
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), complete.substr(0, mapEnd));
}

TEST_F(SaveTrack, savesInPlaceAcrossFileSystems) {
    const fs::path shared = "/dev/shm";
    std::error_code failure;
    struct stat here {};
    struct stat there {};
    if (stat(".", &here) != 0 || stat(shared.c_str(), &there) != 0 || here.st_dev == there.st_dev)
        GTEST_SKIP() << "no second file system";
    openWorkspace();
    std::string other = (shared / "corvane-XXXXXX").string();
    ASSERT_NE(mkdtemp(other.data()), nullptr);
    fs::copy(kTracks, other, fs::copy_options::recursive);
    fs::remove_all("TmpDirOsws/vdk/ContourPath");
    fs::create_directory_symlink(other, "TmpDirOsws/vdk/ContourPath");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(other + "/b.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_THAT(NamesIn(other), ElementsAre("A.trk", "b.trk", "notes.txt"));
    fs::remove_all(other, failure);
}

TEST_F(SaveTrack, savesAWorkspaceTrackLoadedAfterAnExternalOneInPlace) {
    openWorkspace();
    loadContent("new.trk", independent::TextFile(track));
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
}

} // namespace
