#include "TrackOperationsTest.h"
#include "workflow/WorkingFiles.h"

namespace {

using ::testing::ElementsAre;

/// The operation "Save" on an external track: a copy joins the workspace.
class SaveExternalTrack : public TrackOperationsTest {};

TEST_F(SaveExternalTrack, addsATrackOfANewNameToTheWorkspace) {
    openWorkspace();
    loadContent("new.trk", independent::TextFile(track));
    const std::string before = FileContent(folder.Path("new.trk"));
    edit();
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "new.trk");
    EXPECT_EQ(FileContent(folder.Path("new.trk")), before);
    EXPECT_EQ(text("label_fileName"), "new.trk");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "new.trk", "External"));
    type("lineEdit_lineLength", "44"); // it belongs to the workspace now
    operate("Save");
    EXPECT_EQ(SegmentsIn(kTracks + "new.trk")[0].length, 44);
    EXPECT_EQ(FileContent(folder.Path("new.trk")), before);
}

TEST_F(SaveExternalTrack, choosesANewNameForATrackOfAListedName) {
    openWorkspace();
    WriteFile(folder.Path("A.trk"), independent::TextFile(track));
    const std::string listed = FileContent(kTracks + "A.trk");
    loadExternal(folder.Path("A.trk"));
    edit();
    operate("Save");
    expectEdited(kTracks + "A-New.trk");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), listed);
    EXPECT_EQ(text("label_fileName"), "A-New.trk");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A-New.trk", "A.trk", "b.trk", "External"));
}

TEST_F(SaveExternalTrack, keepsANameThatDiffersOnlyInCase) {
    openWorkspace();
    WriteFile(folder.Path("a.trk"), independent::TextFile(track));
    const std::string listed = FileContent(kTracks + "A.trk");
    loadExternal(folder.Path("a.trk"));
    edit();
    operate("Save");
    expectEdited(kTracks + "a.trk");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), listed);
    EXPECT_EQ(text("label_fileName"), "a.trk");
}

TEST_F(SaveExternalTrack, newNamesReplaceWhatFollowsTheLastDot) {
    EXPECT_EQ(NewTrackName(QStringLiteral("A.trk")), QStringLiteral("A-New.trk"));
    EXPECT_EQ(NewTrackName(QStringLiteral("a.b.trk")), QStringLiteral("a.b-New.trk"));
    EXPECT_EQ(NewTrackName(QStringLiteral("plain")), QStringLiteral("plain-New.trk"));
}

TEST_F(SaveExternalTrack, needsAWorkspace) {
    loadContent("new.trk", independent::TextFile(track));
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(text("label_fileName"), "External - new.trk");
}

} // namespace
