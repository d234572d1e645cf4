#include "KeptWork.h"

#include <cstdlib>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

/// Copies of files that an operation replaces or removes.
class KeptFiles : public KeptWork {};

TEST_F(KeptFiles, keepsTheOperatorsBackupThatIsAWorkingFileBeforeRemoval) {
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

TEST_F(KeptFiles, keepsTheOperatorsBackupBeforeADownloadReplacesIt) {
    startServer();
    fs::copy_file("A.osbak", "Ostra.osbak");
    const std::string saved = FileContent("Ostra.osbak");
    openBackup("./Ostra.osbak");
    choose("comboBox_sensor", "127.0.0.1");
    connectToServer();
    ASSERT_THAT(kept(), ElementsAre("Ostra.osbak (replaced).osbak"));
    EXPECT_EQ(FileContent(keptPath("Ostra.osbak (replaced).osbak")), saved);
    closeWindow();
    EXPECT_EQ(kept().size(), 1U) << "a download is not the operator's file";
}

TEST_F(KeptFiles, keepsABackupInAWorkingFolderBeforeTheFolderIsReplaced) {
    openBackup("A.osbak");
    fs::copy_file("B.osbak", "TmpDirBackup/mine.osbak");
    const std::string mine = FileContent("B.osbak");
    loadBackup("./TmpDirBackup/mine.osbak");
    EXPECT_THAT(kept(), ElementsAre("mine.osbak (deleted).osbak"));
    EXPECT_EQ(FileContent(keptPath("mine.osbak (deleted).osbak")), mine);
}

TEST_F(KeptFiles, secondExternalTrackOfANameKeepsTheFirst) {
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

TEST_F(KeptFiles, externalFileInTheTrackFolderIsNeverOverwritten) {
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

TEST_F(KeptFiles, deletingATrackKeepsACopy) {
    openBackup("A.osbak");
    loadAndEdit("x.trk");
    choose("comboBox_operation", "Delete");
    ASSERT_EQ(status(), "Delete successfully.");
    EXPECT_FALSE(fs::exists(kTracks + "x.trk"));
    EXPECT_THAT(kept(), ElementsAre("x.trk (deleted).trk"));
    EXPECT_EQ(keptLength("x.trk (deleted).trk"), 33);
    EXPECT_EQ(state(), "") << "nothing is left to be sent";
    closeWindow();
    EXPECT_EQ(kept().size(), 1U);
}

TEST_F(KeptFiles, savingOverATextTrackKeepsTheText) {
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
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    choose("comboBox_operation", "Save As");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_FALSE(fs::exists("copy.trk"));
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
            setenv("CORVANE_KEPT", folder.Path("no folder/kept").c_str(), 1);
        }
    }
    void TearDown() override {
        KeptWork::TearDown();
        std::error_code none;
        if (GetParam() == BadFolder::IsReadOnly)
            fs::permissions(Utf8Path(folder.Path("kept")), fs::perms::owner_all, none);
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

} // namespace
