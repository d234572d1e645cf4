#include "KeptWork.h"

#include <QApplication>
#include <QLabel>

#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

TEST_F(KeptWork, loadingAnotherTrackKeepsUnsavedPaths) {
    openBackup("A.osbak");
    edit("x.trk");
    load("y.trk");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(keptLength("x.trk (unsaved).trk"), 33);
    EXPECT_EQ(firstLength(kTracks + "x.trk"), 100);
    EXPECT_EQ(state(), "");
    const independent::Track copy = independent::ReadBinary(FileContent(keptPath("x.trk (unsaved).trk")));
    EXPECT_FALSE(copy.rulers.empty());
    EXPECT_EQ(copy.cells, track.cells);
    expectNoBox();
}

TEST_F(KeptWork, keptCopyOpensAsAnExternalTrack) {
    openBackup("A.osbak");
    edit("x.trk");
    load("y.trk");
    loadExternal(keptPath("x.trk (unsaved).trk"));
    EXPECT_EQ(status(), "Load successfully.");
    EXPECT_EQ(paths().at(0).lengths.at(0), 33);
}

TEST_F(KeptWork, reloadingTheTrackKeepsUnsavedPaths) {
    openBackup("A.osbak");
    edit("x.trk");
    load("x.trk");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(paths().at(0).lengths.at(0), 100);
}

TEST_F(KeptWork, changingTheSourceKeepsUnsavedPaths) {
    startServer();
    openBackup("A.osbak");
    edit("x.trk");
    choose("comboBox_sensor", "127.0.0.1");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(state(), "");
}

TEST_F(KeptWork, resetKeepsUnsavedPaths) {
    openBackup("A.osbak");
    edit("x.trk");
    click("toolButton_reset");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(status(), "Reset successfully.");
}

TEST_F(KeptWork, disconnectingKeepsUnsavedPathsOfAWorkspaceTrackOnly) {
    openConnected();
    edit("b.trk");
    click("pushButton_sensor");
    ASSERT_EQ(status(), "Disconnect successfully.");
    EXPECT_THAT(kept(), ElementsAre("b.trk (unsaved).trk"));
    WriteFile(folder.Path("outside.trk"), trackOfLength(100));
    loadExternal(folder.Path("outside.trk"));
    type("lineEdit_lineLength", "33");
    connectToServer();
    click("pushButton_sensor");
    EXPECT_THAT(kept(), ElementsAre("b.trk (unsaved).trk"));
    EXPECT_EQ(state(), "Unsaved") << "the external track stays open";
}

TEST_F(KeptWork, closingTheWindowKeepsUnsavedPaths) {
    openBackup("A.osbak");
    edit("x.trk");
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(keptLength("x.trk (unsaved).trk"), 33);
}

TEST_F(KeptWork, doesNotKeepSavedOrUndoneEdits) {
    openBackup("A.osbak");
    edit("x.trk");
    canvas().setFocus();
    QApplication::setActiveWindow(window.get());
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(state(), "");
    load("y.trk");
    clickCanvas(0.5, 0.2); // neither closes nor draws: a loaded track has an open path
    QTest::mouseDClick(&canvas(), Qt::LeftButton);
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("y.trk (unsaved).trk")) << "the click extended the loaded path";
}

TEST_F(KeptWork, failedLoadKeepsUnsavedPathsOnce) {
    openBackup("A.osbak");
    edit("x.trk");
    WriteFile(folder.Path("empty.trk"), "");
    loadExternal(folder.Path("empty.trk"));
    expectErrorBox("ERROR_TRACK - Failed to read basic information.");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    loadExternal(folder.Path("empty.trk"));
    expectErrorBox("ERROR_TRACK - Failed to read basic information.");
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    type("lineEdit_lineLength", "44"); // the old map is still visible
    closeWindow();
    EXPECT_EQ(kept().size(), 2U);
}

TEST_F(KeptWork, pathsWhoseTrackIsLostAreKeptAsText) {
    openBackup("A.osbak");
    edit("x.trk");
    fs::remove(kTracks + "x.trk");
    load("y.trk");
    ASSERT_THAT(kept(), ElementsAre("x.trk (unsaved).csv"));
    EXPECT_THAT(FileContent(keptPath("x.trk (unsaved).csv")), HasSubstr(",33,"));
}

TEST_F(KeptWork, closingTheWindowKeepsSavedButUnsentTracks) {
    openConnected();
    loadAndEdit("b.trk");
    EXPECT_EQ(state(), "Saved, not sent");
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("b.trk (unsent).trk"));
    EXPECT_EQ(keptLength("b.trk (unsent).trk"), 33);
}

TEST_F(KeptWork, downloadKeepsTheSavedTrackThatItReplaces) {
    openConnected();
    loadAndEdit("b.trk");
    server->Kill();
    click("toolButton_upload");
    awaitWorker();
    EXPECT_EQ(answers.takeBoxes().size(), 1U);
    EXPECT_EQ(state(), "Saved, not sent");
    server->Restart();
    qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    click("toolButton_reset");
    connectToServer();
    EXPECT_EQ(firstLength(kTracks + "b.trk"), 100) << "the server's";
    EXPECT_THAT(kept(), ElementsAre("b.trk (unsent).trk"));
    EXPECT_EQ(keptLength("b.trk (unsent).trk"), 33);
    EXPECT_EQ(state(), "");
}

TEST_F(KeptWork, doesNotKeepSentOrPackedTracks) {
    openConnected();
    loadAndEdit("b.trk");
    click("toolButton_upload");
    awaitWorker();
    ASSERT_EQ(status(), "Restoring successfully.");
    EXPECT_EQ(state(), "");
    click("pushButton_sensor");
    openBackup("A.osbak");
    loadAndEdit("x.trk");
    EXPECT_EQ(state(), "Saved, not sent");
    click("toolButton_upload");
    ASSERT_EQ(status(), "Saved the backup file successfully.");
    EXPECT_EQ(state(), "");
    closeWindow();
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(KeptWork, failedSaveIsNotCountedAsUnsent) {
    openBackup("A.osbak");
    edit("x.trk");
    fs::remove(kTracks + "x.trk");
    choose("comboBox_operation", "Save");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_EQ(state(), "Unsaved");
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).csv"));
}

TEST_F(KeptWork, keepsSavedTracksOfACrashedRunBeforeTheirWorkspaceIsRemoved) {
    openBackup("A.osbak");
    loadAndEdit("x.trk");
    // The files before an orderly end are those that a crash would leave.
    const auto everything = fs::copy_options::recursive;
    fs::create_directory("crashed");
    fs::copy("TmpDirOsws", Utf8Path(folder.Path("crashed/TmpDirOsws")), everything);
    fs::copy("TmpDirBackup", Utf8Path(folder.Path("crashed/TmpDirBackup")), everything);
    fs::copy("kept", Utf8Path(folder.Path("crashed/kept")), everything);
    closeWindow();
    fs::remove_all("kept");
    for (const auto& entry : fs::directory_iterator(Utf8Path(folder.Path("crashed"))))
        fs::rename(entry.path(), entry.path().filename());
    openWindow();
    EXPECT_EQ(state(), "Saved, not sent");
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsent).trk"));
    EXPECT_EQ(keptLength("x.trk (unsent).trk"), 33);
    openWindow();
    EXPECT_EQ(state(), "");
}

TEST_F(KeptWork, recoversAnEditAfterACrashFiveSecondsLater) {
    openBackup("A.osbak");
    edit("x.trk");
    EXPECT_TRUE(journals().empty());
    ASSERT_TRUE(QTest::qWaitFor([this] { return journals().size() == 1; }, 8000));
    const std::string journal = journals().at(0);
    const std::string content = FileContent(journal);
    fs::copy("TmpDirOsws", "crashed", fs::copy_options::recursive);
    closeWindow();
    EXPECT_FALSE(fs::exists(Utf8Path(journal))) << "a regular end keeps the edits as a copy instead";
    fs::remove_all("kept");
    fs::create_directory("kept");
    fs::permissions("kept", fs::perms::owner_all);
    WriteFile(journal, content);
    fs::rename("crashed", "TmpDirOsws");
    openWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (crash).trk"));
    EXPECT_EQ(keptLength("x.trk (crash).trk"), 33);
    EXPECT_FALSE(independent::ReadBinary(FileContent(keptPath("x.trk (crash).trk"))).rulers.empty());
    EXPECT_FALSE(fs::exists(Utf8Path(journal)));
}

TEST_F(KeptWork, savingDiscardsTheJournal) {
    openBackup("A.osbak");
    edit("x.trk");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !journals().empty(); }, 8000));
    choose("comboBox_operation", "Save");
    ASSERT_EQ(status(), "Save successfully.");
    EXPECT_TRUE(journals().empty());
}

TEST_F(KeptWork, packingLeavesUnsavedPathsUnsavedAndKeepsThem) {
    openBackup("A.osbak");
    edit("x.trk");
    click("toolButton_upload");
    EXPECT_EQ(status(), "Saved the backup file successfully.");
    EXPECT_EQ(state(), "Unsaved");
    closeWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    EXPECT_EQ(keptLength("x.trk (unsaved).trk"), 33);
}

TEST_F(KeptWork, openingAnotherBackupClosesTheTrackAndPacksNoneOfItsPaths) {
    openBackup("A.osbak");
    edit("x.trk");
    loadBackup(folder.Path("B.osbak"));
    ASSERT_EQ(status(), "Load backup file successfully.");
    expectTrackClosed();
    EXPECT_THAT(kept(), ElementsAre("x.trk (unsaved).trk"));
    choose("comboBox_operation", "Save");
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, QStringLiteral("Please load a track file firstly."));
    click("toolButton_upload");
    EXPECT_EQ(firstLength(kTracks + "x.trk"), 700);
}

TEST_F(KeptWork, openingAnotherBackupLeavesAnExternalTrackOpen) {
    WriteFile(folder.Path("outside.trk"), trackOfLength(100));
    openBackup("A.osbak");
    loadExternal(folder.Path("outside.trk"));
    type("lineEdit_lineLength", "33");
    loadBackup(folder.Path("B.osbak"));
    EXPECT_EQ(paths().at(0).lengths.at(0), 33);
    EXPECT_EQ(text("label_fileName"), "External - outside.trk");
    EXPECT_EQ(state(), "Unsaved");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(KeptWork, unreadableBackupLeavesTheTrackAndItsWorkspace) {
    openBackup("A.osbak");
    edit("x.trk");
    WriteFile(folder.Path("broken.osbak"), "no archive");
    loadBackup(folder.Path("broken.osbak"));
    expectErrorBox("ERROR_NOT_FOUND - ./TmpDirBackup/workspaces/Workspace.osws doesn't exist.");
    EXPECT_EQ(paths().at(0).lengths.at(0), 33);
    EXPECT_EQ(text("label_fileName"), "x.trk");
    EXPECT_EQ(firstLength(kTracks + "x.trk"), 100);
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(KeptWork, stateLabelSaysWhereCopiesAre) {
    openWindow();
    auto& label = find<QLabel>("label_state");
    EXPECT_THAT(label.toolTip().toStdString(), HasSubstr(folder.Path("kept")));
    EXPECT_EQ(label.focusPolicy(), Qt::NoFocus);
}

TEST_F(KeptWork, keptCopiesAreNeverPacked) {
    openBackup("A.osbak");
    edit("x.trk");
    load("y.trk");
    loadAndEdit("y.trk");
    click("toolButton_upload");
    for (const char* const working : {"TmpDirOsws", "TmpDirBackup"})
        for (const auto& entry : fs::recursive_directory_iterator(working))
            EXPECT_EQ(entry.path().string().find("(unsaved)"), std::string::npos) << entry.path();
}

} // namespace
