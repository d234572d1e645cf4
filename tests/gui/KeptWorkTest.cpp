#include "SourceWorkflows.h"

#include <QApplication>
#include <QLabel>

#include <algorithm>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

/// Length of "2026-11-22 14.03.12 ", which every kept copy's name begins with.
constexpr std::size_t kTimeLength = 20;

/// The real window, and what it keeps of what an operator would lose.
class KeptWork : public SourceWorkflows {
  protected:
    KeptWork() {
        makeBackup(folder.Path("A.osbak"), {{"x.trk", trackOfLength(100)}, {"y.trk", trackOfLength(100)}});
        makeBackup(folder.Path("B.osbak"), {{"x.trk", trackOfLength(700)}});
    }

    /// A track with a path whose segments are as long as that and a little more.
    static std::string trackOfLength(int length) {
        return independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, length)));
    }

    void openBackup(const std::string& name) {
        if (!window)
            openWindowAndListen();
        choose("comboBox_sensor", "Backup File");
        loadBackup(folder.Path(name));
    }
    void load(const std::string& name) {
        choose("comboBox_file", name);
        choose("comboBox_operation", "Load");
        ASSERT_EQ(status(), "Load successfully.");
    }
    /// Loads a track of an opened backup and sets the length of its first segment to 33.
    void edit(const std::string& name) {
        load(name);
        type("lineEdit_lineLength", "33");
        ASSERT_EQ(text("label_state"), "Unsaved");
    }

    /// The kept copies without their times.
    std::vector<std::string> kept() {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator(folder.Path("kept"), none))
            if (const std::string name = entry.path().filename(); name.at(0) != '.')
                names.push_back(name.substr(kTimeLength));
        return names;
    }
    /// The whole path of a kept copy, by its name without the time.
    std::string keptPath(const std::string& name) {
        for (const auto& entry : fs::directory_iterator(folder.Path("kept")))
            if (entry.path().filename().string().substr(kTimeLength) == name)
                return entry.path();
        throw std::runtime_error("not kept: " + name);
    }
    int keptLength(const std::string& name) { return firstLength(keptPath(name)); }
    std::string state() { return text("label_state"); }
};

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
    clickCanvas(0.5, 0.2); // closes nothing and draws nothing: a loaded track has an open path
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
    type("lineEdit_lineLength", "44"); // the old map is visible still
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
    // What a crash leaves is what there is before an orderly end.
    const auto everything = fs::copy_options::recursive;
    fs::create_directory("crashed");
    fs::copy("TmpDirOsws", folder.Path("crashed/TmpDirOsws"), everything);
    fs::copy("TmpDirBackup", folder.Path("crashed/TmpDirBackup"), everything);
    fs::copy("kept", folder.Path("crashed/kept"), everything);
    closeWindow();
    fs::remove_all("kept");
    for (const auto& entry : fs::directory_iterator(folder.Path("crashed")))
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
    const auto journals = [this] {
        std::vector<fs::path> found;
        for (const auto& entry : fs::directory_iterator(folder.Path("kept")))
            if (entry.path().filename().string().rfind(".journal-", 0) == 0 &&
                entry.path().extension() != ".lock")
                found.push_back(entry.path());
        return found;
    };
    const bool keptSoon = fs::exists("kept") && !journals().empty();
    EXPECT_FALSE(keptSoon);
    ASSERT_TRUE(QTest::qWaitFor([&] { return fs::exists("kept") && journals().size() == 1; }, 8000));
    const fs::path journal = journals().at(0);
    const std::string content = FileContent(journal);
    fs::copy("TmpDirOsws", "crashed", fs::copy_options::recursive);
    closeWindow();
    EXPECT_FALSE(fs::exists(journal)) << "an orderly end keeps the edits in another way";
    fs::remove_all("kept");
    fs::create_directory("kept");
    fs::permissions("kept", fs::perms::owner_all);
    WriteFile(journal, content);
    fs::rename("crashed", "TmpDirOsws");
    openWindow();
    EXPECT_THAT(kept(), ElementsAre("x.trk (crash).trk"));
    EXPECT_EQ(keptLength("x.trk (crash).trk"), 33);
    EXPECT_FALSE(independent::ReadBinary(FileContent(keptPath("x.trk (crash).trk"))).rulers.empty());
    EXPECT_FALSE(fs::exists(journal));
}

TEST_F(KeptWork, savingDiscardsTheJournal) {
    openBackup("A.osbak");
    edit("x.trk");
    const auto hasJournal = [this] {
        std::error_code none;
        return std::any_of(fs::directory_iterator(folder.Path("kept"), none), fs::directory_iterator(),
                           [](const auto& entry) {
                               const std::string name = entry.path().filename();
                               return name.rfind(".journal-", 0) == 0 && entry.path().extension() != ".lock";
                           });
    };
    ASSERT_TRUE(QTest::qWaitFor(hasJournal, 8000));
    choose("comboBox_operation", "Save");
    ASSERT_EQ(status(), "Save successfully.");
    EXPECT_FALSE(hasJournal());
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

TEST_F(KeptWork, keepsTheOperatorsBackupThatIsAWorkingFileBeforeRemoval) {
    fs::copy_file("A.osbak", "Ostra.osbak");
    openBackup("./Ostra.osbak");
    ASSERT_EQ(status(), "Load backup file successfully.");
    loadAndEdit("x.trk");
    click("toolButton_upload");
    const std::string saved = FileContent("Ostra.osbak");
    closeWindow();
    EXPECT_FALSE(fs::exists("Ostra.osbak"));
    ASSERT_THAT(kept(), ElementsAre("Ostra.osbak (deleted).osbak"));
    EXPECT_EQ(FileContent(keptPath("Ostra.osbak (deleted).osbak")), saved);
}

TEST_F(KeptWork, keepsTheOperatorsBackupBeforeADownloadReplacesIt) {
    startServer();
    fs::copy_file("A.osbak", "Ostra.osbak");
    const std::string saved = FileContent("Ostra.osbak");
    openBackup("./Ostra.osbak");
    choose("comboBox_sensor", "127.0.0.1");
    connectToServer();
    ASSERT_THAT(kept(), ElementsAre("Ostra.osbak (replaced).osbak"));
    EXPECT_EQ(FileContent(keptPath("Ostra.osbak (replaced).osbak")), saved);
    closeWindow();
    EXPECT_EQ(kept().size(), 1U) << "what was downloaded is no file of the operator's";
}

TEST_F(KeptWork, keepsABackupInAWorkingFolderBeforeTheFolderIsReplaced) {
    openBackup("A.osbak");
    fs::copy_file("B.osbak", "TmpDirBackup/mine.osbak");
    const std::string mine = FileContent("B.osbak");
    loadBackup("./TmpDirBackup/mine.osbak");
    EXPECT_THAT(kept(), ElementsAre("mine.osbak (deleted).osbak"));
    EXPECT_EQ(FileContent(keptPath("mine.osbak (deleted).osbak")), mine);
}

TEST_F(KeptWork, secondExternalTrackOfANameKeepsTheFirst) {
    fs::create_directory("elsewhere");
    WriteFile(folder.Path("x.trk"), trackOfLength(200));
    WriteFile(folder.Path("elsewhere/x.trk"), trackOfLength(300));
    openBackup("A.osbak");
    loadExternal(folder.Path("x.trk"));
    choose("comboBox_operation", "Save");
    EXPECT_EQ(text("label_fileName"), "x-New.trk");
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("x-New.trk"));
    loadExternal(folder.Path("elsewhere/x.trk"));
    choose("comboBox_operation", "Save");
    EXPECT_EQ(firstLength(kTracks + "x-New.trk"), 300);
    ASSERT_THAT(kept(), ElementsAre("x-New.trk (replaced).trk"));
    EXPECT_EQ(keptLength("x-New.trk (replaced).trk"), 200);
}

TEST_F(KeptWork, externalFileInTheTrackFolderIsNeverOverwritten) {
    openBackup("A.osbak");
    fs::copy_file(kTracks + "x.trk", kTracks + "unlisted.trk");
    const std::string before = FileContent(kTracks + "unlisted.trk");
    loadExternal(kTracks + "unlisted.trk");
    type("lineEdit_lineLength", "33");
    choose("comboBox_operation", "Save");
    ASSERT_EQ(status(), "Save successfully.");
    EXPECT_EQ(FileContent(kTracks + "unlisted.trk"), before);
    EXPECT_EQ(text("label_fileName"), "unlisted-New.trk");
    EXPECT_EQ(firstLength(kTracks + "unlisted-New.trk"), 33);
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("unlisted-New.trk"));
}

TEST_F(KeptWork, deletingATrackKeepsACopy) {
    openBackup("A.osbak");
    loadAndEdit("x.trk");
    choose("comboBox_operation", "Delete");
    ASSERT_EQ(status(), "Delete successfully.");
    EXPECT_FALSE(fs::exists(kTracks + "x.trk"));
    EXPECT_THAT(kept(), ElementsAre("x.trk (deleted).trk"));
    EXPECT_EQ(keptLength("x.trk (deleted).trk"), 33);
    EXPECT_EQ(state(), "") << "there is nothing left to be sent";
    closeWindow();
    EXPECT_EQ(kept().size(), 1U);
}

TEST_F(KeptWork, savingOverATextTrackKeepsTheText) {
    const std::string text = independent::TextFile(track);
    makeBackup(folder.Path("text.osbak"), {{"t.trk", text}});
    openBackup("text.osbak");
    loadAndEdit("t.trk");
    ASSERT_THAT(kept(), ElementsAre("t.trk (text original).trk"));
    EXPECT_EQ(FileContent(keptPath("t.trk (text original).trk")), text);
    choose("comboBox_operation", "Save");
    EXPECT_EQ(kept().size(), 1U) << "it is binary now";
    WriteFile(folder.Path("copy.trk"), text);
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    choose("comboBox_operation", "Save As");
    EXPECT_THAT(kept(), UnorderedElementsAre("t.trk (text original).trk", "copy.trk (text original).trk"));
}

struct LossyTrack {
    const char* name;
    double zResolution;
    std::vector<double> heights;
    const char* reason;
};

void PrintTo(const LossyTrack& lossy, std::ostream* out) {
    *out << "ZResolution " << lossy.zResolution;
}

class LossySave : public KeptWork, public ::testing::WithParamInterface<LossyTrack> {};

TEST_P(LossySave, isRefusedAndTheTextStays) {
    independent::Track lossy;
    lossy.zResolution = GetParam().zResolution;
    lossy.width = static_cast<int>(GetParam().heights.size());
    lossy.height = 2;
    for (int row = 0; row < lossy.height; ++row) {
        lossy.rowPositions.push_back(row);
        for (const double height : GetParam().heights)
            lossy.heights.emplace_back(height);
    }
    for (int column = 0; column < lossy.width; ++column)
        lossy.columnPositions.push_back(column);
    lossy.segments = PathAcross(0, 2, 0.5, 100);
    const std::string text = independent::TextFile(lossy);
    makeBackup(folder.Path("lossy.osbak"), {{"t.trk", text}});
    openBackup("lossy.osbak");
    load("t.trk");
    type("lineEdit_lineLength", "33");
    choose("comboBox_operation", "Save");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_EQ(FileContent(kTracks + "t.trk"), text);
    EXPECT_EQ(state(), "Unsaved");
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_THAT(log.Lines(), ::testing::Contains(HasSubstr(GetParam().reason)));
    answers.typeFileName(QString::fromStdString(folder.Path("beside.trk")));
    choose("comboBox_operation", "Save As");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_FALSE(fs::exists("beside.trk"));
}

INSTANTIATE_TEST_SUITE_P(
    ZResolution, LossySave,
    ::testing::Values(LossyTrack{"Zero", 0.0, {5, 7, 9}, "row=0 column=0 height=5"},
                      LossyTrack{"Ten", 10.0, {5, 7, 9}, "all heights become the raw value 0"},
                      LossyTrack{"AThousandth", 0.001, {5, 40, 70}, "row=0 column=1 height=40"}),
    [](const auto& lossy) { return std::string(lossy.param.name); });

enum class BadFolder { IsAFile, IsReadOnly, CannotBeMade };

void PrintTo(BadFolder folder, std::ostream* out) {
    *out << static_cast<int>(folder);
}

class KeptNowhere : public KeptWork, public ::testing::WithParamInterface<BadFolder> {
  protected:
    void SetUp() override {
        if (GetParam() == BadFolder::IsAFile) {
            WriteFile(folder.Path("kept"), "a file");
        } else if (GetParam() == BadFolder::IsReadOnly) {
            fs::create_directory("kept");
            fs::permissions("kept", fs::perms::owner_read | fs::perms::owner_exec);
        } else {
            WriteFile(folder.Path("no folder"), "");
            qputenv("CORVANE_KEPT", folder.Path("no folder/kept").c_str());
        }
    }
    void TearDown() override {
        KeptWork::TearDown();
        std::error_code none;
        if (GetParam() == BadFolder::IsReadOnly)
            fs::permissions(folder.Path("kept"), fs::perms::owner_all, none);
    }
};

TEST_P(KeptNowhere, doesNotStopAnySequence) {
    openBackup("A.osbak");
    edit("x.trk");
    load("y.trk");
    loadAndEdit("y.trk");
    choose("comboBox_operation", "Delete");
    EXPECT_EQ(status(), "Delete successfully.");
    loadBackup(folder.Path("B.osbak"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNoBox();
    closeWindow();
    EXPECT_FALSE(fs::exists("TmpDirOsws"));
}

INSTANTIATE_TEST_SUITE_P(Folder, KeptNowhere,
                         ::testing::Values(BadFolder::IsAFile, BadFolder::IsReadOnly,
                                           BadFolder::CannotBeMade));

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
