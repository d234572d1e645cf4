#include "TrackOperationsTest.h"

#include <QStandardItemModel>

#include <filesystem>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The operation "Delete".
class DeleteTrack : public TrackOperationsTest {};

TEST_F(DeleteTrack, isDisabledForExternal) {
    openWorkspace();
    const auto* model = qobject_cast<QStandardItemModel*>(find<QComboBox>("comboBox_operation").model());
    choose("comboBox_file", "External");
    EXPECT_EQ(model->item(4)->flags(), Qt::NoItemFlags);
    operate("Delete");
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
    choose("comboBox_file", "b.trk");
    EXPECT_EQ(model->item(4)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

TEST_F(DeleteTrack, removesTheFileAndItsEntryAndKeepsTheOpenTrack) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    operate("Delete");
    EXPECT_EQ(status(), "Delete successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "External"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "notes.txt"));
    EXPECT_EQ(text("label_fileName"), "b.trk");
    EXPECT_THAT(paths(), SizeIs(1));
    choose("comboBox_file", "A.trk");
    operate("Delete"); // the entries still match their files
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("notes.txt"));
    expectNormal();
}

TEST_F(DeleteTrack, leavesExternalAfterTheLastTrack) {
    openWorkspace();
    const auto* model = qobject_cast<QStandardItemModel*>(find<QComboBox>("comboBox_operation").model());
    choose("comboBox_file", "A.trk");
    operate("Delete");
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("b.trk"));
    EXPECT_EQ(model->item(4)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    operate("Delete");
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("External"));
    EXPECT_EQ(model->item(4)->flags(), Qt::NoItemFlags);
}

TEST_F(DeleteTrack, reportsAMissingFile) {
    openWorkspace();
    choose("comboBox_file", "b.trk");
    fs::remove(kTracks + "b.trk");
    (void)log.Lines();
    operate("Delete");
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete ./TmpDirOsws/vdk/ContourPath/b.trk");
    EXPECT_THAT(log.Lines(),
                Contains("ERROR: (ERROR_NOT_FOUND) Failed to delete ./TmpDirOsws/vdk/ContourPath/b.trk"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
}

TEST_F(DeleteTrack, reportsAMissingSelection) {
    openWorkspace();
    choose("comboBox_file", "External");
    find<QComboBox>("comboBox_operation").setCurrentIndex(4); // the user cannot do this
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete ./TmpDirOsws/vdk/ContourPath/");
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
}

} // namespace
