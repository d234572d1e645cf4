#include "OrdinaryUser.h"
#include "TrackOperationsTest.h"
#include "workflow/WorkingFiles.h"

#include <QDir>

#include <filesystem>

#include <sys/stat.h>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The list of track files.
class TrackList : public TrackOperationsTest {};

TEST_F(TrackList, holdsOnlyExternalWithoutASource) {
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(TrackList, sortsByNameIgnoringCaseWithExternalLast) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}, {"A.trk", ""}, {"C.trk", ""}, {"notes.txt", ""}});
    loadBackup(folder.Path("x.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "C.trk", "External"));
}

TEST_F(TrackList, isEmptyForAMissingFolder) {
    EXPECT_TRUE(ListFiles(QStringLiteral("./nowhere"), QStringLiteral("*.trk")).isEmpty());
}

TEST_F(TrackList, staysWhenTheFolderIsUnreadable) {
    openWorkspace();
    ASSERT_EQ(::chmod(kTracks.c_str(), 0), 0);
    ASSERT_EQ(::chmod("TmpDirOsws", 0755), 0); // only its owner may enter it
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        operate("Refresh");
    }
    expectErrorBox("ERROR_FILE - Failed to list files in ./TmpDirOsws/vdk/ContourPath");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
    ASSERT_EQ(::chmod(kTracks.c_str(), 0755), 0);
    WriteFile(kTracks + "c.trk", "");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "c.trk", "External"));
}

TEST_F(TrackList, omitsInvalidUtf8AndHiddenNames) {
    openWorkspace();
    WriteFile(kTracks + "\xff.trk", "");
    WriteFile(kTracks + ".c.trk", "");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
}

TEST_F(TrackList, holdsOddNamesAndFilesWithoutPermissions) {
    openWorkspace();
    for (const std::string name : {"c\n.trk", "d [*]?\\.TRK", "e\u0301.trk"})
        WriteFile(kTracks + name, "");
    fs::permissions(kTracks + "b.trk", fs::perms::none);
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"),
                ElementsAre("A.trk", "b.trk", "c\n.trk", "d [*]?\\.TRK", "e\u0301.trk", "External"));
}

TEST_F(TrackList, equalsThatOfQt) {
    openWorkspace();
    for (const char* name :
         {"B2.trk", "_.trk", "a10.trk", "a9.trk", "\u00c4.trk", "\u00e4b.trk", "z.trk.old"})
        WriteFile(kTracks + name, "");
    fs::create_directory(kTracks + "folder.trk");
    fs::create_symlink("A.trk", kTracks + "link.trk");
    fs::create_symlink("folder.trk", kTracks + "link to folder.trk");
    fs::create_symlink("nowhere", kTracks + "broken link.trk");
    ASSERT_EQ(::mkfifo((kTracks + "pipe.trk").c_str(), 0600), 0);
    operate("Refresh");
    std::vector<std::string> expected;
    for (const QString& name : QDir(QString::fromStdString(kTracks)).entryList({QStringLiteral("*.trk")}))
        expected.push_back(name.toStdString());
    EXPECT_THAT(expected, SizeIs(11));
    EXPECT_THAT(expected, Not(Contains("pipe.trk")));
    expected.emplace_back("External");
    EXPECT_EQ(items("comboBox_file"), expected);
}

TEST_F(TrackList, hasAFixedOrderOfNamesThatDifferOnlyInCase) {
    openWorkspace();
    for (const char* name : {"c.trk", "C.trk", "B.trk"})
        WriteFile(kTracks + name, "");
    operate("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "B.trk", "b.trk", "C.trk", "c.trk", "External"));
}

TEST_F(TrackList, isReadAgainByRefresh) {
    openWorkspace();
    WriteFile(kTracks + "late.trk", "");
    fs::remove(kTracks + "A.trk");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "late.trk", "External"));
    fs::remove_all("TmpDirOsws/vdk");
    operate("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    expectNormal();
}

} // namespace
