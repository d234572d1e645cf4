#include "FolderTree.h"
#include "SourceWorkflows.h"
#include "TarBlocks.h"
#include "link/FileUtils.h"

#include <QLabel>
#include <QWindow>

#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// A backup file as the source.
class BackupFileWorkflows : public SourceWorkflows {};

TEST_F(BackupFileWorkflows, opensEditsAndSavesABackupFileInPlace) {
    makeBackup(folder.Path("my station.osbak"), {{"b.trk", independent::BinaryFile(track)}});
    openWindowAndListen();
    loadBackup(folder.Path("my station.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_EQ(title(), "Corvane - Backup File - " + folder.Path("my station.osbak"));
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
    EXPECT_TRUE(enabled("comboBox_sensor"));
    EXPECT_TRUE(enabled("comboBox_operation"));
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please select a Ostra backup file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("Ostra (*.osbak)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), Utf8Text(fs::current_path()));
    loadAndEdit("b.trk");
    messages.clear();
    click("toolButton_upload");
    EXPECT_THAT(messages, ElementsAre("Saving the backup file...", "Saved the backup file successfully."));
    TarUncompress(folder.Path("my station.osbak"), folder.Path("out"), bAlloc_Application());
    TarUncompress(folder.Path("out/workspaces/Workspace.osws"), folder.Path("ws"), bAlloc_Application());
    EXPECT_EQ(firstLength(folder.Path("ws/vdk/ContourPath/b.trk")), 33);
    EXPECT_EQ(FileContent(folder.Path("out/info.json")), "{}");
    expectNoBox();
}

TEST_F(BackupFileWorkflows, realStationsBackupIsOpenedEditedAndPacked) {
    fs::copy(TestData("station.osbak"), Utf8Path(folder.Path("station.osbak")));
    openWindowAndListen();
    loadBackup(folder.Path("station.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("Fault-binary.trk", "fault.trk", "External"));
    loadAndEdit("fault.trk");
    click("toolButton_upload");
    EXPECT_EQ(status(), "Saved the backup file successfully.");
    click("toolButton_reset");
    loadBackup(folder.Path("station.osbak"));
    choose("comboBox_file", "fault.trk");
    choose("comboBox_operation", "Load");
    ASSERT_THAT(paths(), SizeIs(2));
    EXPECT_THAT(paths()[0].lengths, ElementsAre(33, 60, 80, 100));
    EXPECT_THAT(paths()[1].spaces, ElementsAre(25, 25, 25));
    expectNoBox();
}

TEST_F(BackupFileWorkflows, titleShowsAnOddPathUnchanged) {
    const std::string odd = folder.Path("a [*] %1 <b>.osbak");
    makeBackup(odd, {});
    openWindow();
    loadBackup(odd);
    EXPECT_EQ(window->windowHandle()->title().toStdString(), "Corvane - Backup File - " + odd);
}

TEST_F(BackupFileWorkflows, cancelledLoadBackupChangesNothing) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindowAndListen();
    loadBackup("");
    EXPECT_EQ(status(), "");
    EXPECT_FALSE(enabled("comboBox_operation"));
    loadBackup(folder.Path("x.osbak"));
    loadBackup("");
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "External"));
    EXPECT_EQ(title(), "Corvane - Backup File - " + folder.Path("x.osbak"));
    click("toolButton_upload"); // the path is lost
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
}

TEST_F(BackupFileWorkflows, backupWithoutAWorkspaceIsReportedAfterTheFirstUnpacking) {
    fs::create_directories(Utf8Path(folder.Path("made/workspaces")));
    WriteFile(folder.Path("made/info.json"), "{}");
    TarCompress(folder.Path("made"), folder.Path("bare.osbak"), bAlloc_Application());
    openWindowAndListen();
    loadBackup(folder.Path("bare.osbak"));
    expectErrorBox("ERROR_NOT_FOUND - ./TmpDirBackup/workspaces/Workspace.osws doesn't exist.");
    EXPECT_TRUE(fs::exists("TmpDirBackup/info.json"));
    EXPECT_FALSE(enabled("comboBox_operation"));
    EXPECT_EQ(status(), "");
    EXPECT_EQ(title(), "MainWindow");
    click("toolButton_upload"); // a partial backup cannot be saved
    expectErrorBox("ERROR_FILE - Please open a backup file firstly.");
    WriteFile(folder.Path("empty.osbak"), "");
    loadBackup(folder.Path("empty.osbak"));
    EXPECT_THAT(answers.takeBoxes(), SizeIs(1));
    makeBackup(folder.Path("good.osbak"), {{"b.trk", ""}});
    loadBackup(folder.Path("good.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
}

TEST_F(BackupFileWorkflows, workspaceWithoutTracksGivesAnEmptyList) {
    fs::create_directories(Utf8Path(folder.Path("made/workspaces")));
    fs::create_directories(Utf8Path(folder.Path("ws/other")));
    TarCompress(folder.Path("ws"), folder.Path("made/workspaces/Workspace.osws"), bAlloc_Application());
    TarCompress(folder.Path("made"), folder.Path("bare.osbak"), bAlloc_Application());
    openWindowAndListen();
    loadBackup(folder.Path("bare.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(BackupFileWorkflows, backupThatCannotBePackedStaysUnchanged) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindowAndListen();
    loadBackup(folder.Path("x.osbak"));
    const std::string before = FileContent(folder.Path("x.osbak"));
    fs::remove_all("TmpDirOsws");
    click("toolButton_upload");
    expectErrorBox("ERROR_FILE - ./TmpDirOsws is not a directory.");
    EXPECT_EQ(FileContent(folder.Path("x.osbak")), before);
    EXPECT_EQ(status(), "Saving the backup file...");
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(BackupFileWorkflows, closingABackupFileKeepsTheFile) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    const std::string before = FileContent(folder.Path("x.osbak"));
    openWindow();
    loadBackup(folder.Path("x.osbak"));
    closeWindow();
    EXPECT_EQ(FileContent(folder.Path("x.osbak")), before);
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
}

TEST_F(BackupFileWorkflows, namesLinksThatTheNextSaveLeavesOut) {
    const std::string workspace =
        TarFolder("vdk") + TarFolder("vdk/ContourPath") + TarFile("vdk/ContourPath/b.trk", "") +
        TarLink("vdk/ContourPath/hard.trk", '1', "vdk/ContourPath/b.trk") +
        TarLink("vdk/ContourPath/soft.trk", '2', "b.trk") + TarLink("vdk/pipe", '6', "") + TarEnd();
    WriteFile(folder.Path("links.osbak"),
              TarFolder("workspaces") + TarFile("workspaces/Workspace.osws", workspace) + TarEnd());
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}});
    openWindow();
    loadBackup(folder.Path("links.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    EXPECT_THAT(items("comboBox_file"), testing::IsSupersetOf({"b.trk", "hard.trk"}));
    EXPECT_EQ(text("label_state"), "Links left out");
    EXPECT_THAT(find<QLabel>("label_state").toolTip().toStdString(),
                testing::HasSubstr("Links left out: vdk/ContourPath/soft.trk, vdk/pipe"));
    EXPECT_THAT(log.Lines(),
                testing::Contains(testing::HasSubstr("INFO: Links and special files left out of "
                                                     "./TmpDirBackup/workspaces/Workspace.osws: 2 "
                                                     "(vdk/ContourPath/soft.trk, vdk/pipe)")));
    loadBackup(folder.Path("x.osbak"));
    EXPECT_EQ(text("label_state"), "");
    EXPECT_THAT(find<QLabel>("label_state").toolTip().toStdString(),
                testing::Not(testing::HasSubstr("left out")));
    loadBackup(folder.Path("links.osbak"));
    click("toolButton_reset");
    EXPECT_EQ(text("label_state"), "");
    expectNoBox();
}

} // namespace
