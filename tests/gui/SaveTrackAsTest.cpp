#include "TrackOperationsTest.h"
#include "log/Log.h"

#include <QApplication>

#include <cstdio>
#include <filesystem>
#include <utility>

namespace {

using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The operation "Save As".
class SaveTrackAs : public TrackOperationsTest {};

TEST_F(SaveTrackAs, writesTheCopyAndKeepsEditingTheOriginal) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    edit();
    (void)answers.takeFileDialogs();
    saveAs(folder.Path("copy.trk"));
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(folder.Path("copy.trk"));
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    EXPECT_EQ(text("label_fileName"), "b.trk");
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please input a name for track file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("track (*.trk)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), fs::current_path().string());
    EXPECT_TRUE(dialogs[0].saves);
    fs::remove(folder.Path("copy.trk"));
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_FALSE(fs::exists(folder.Path("copy.trk")));
}

TEST_F(SaveTrackAs, computesTheRulerEvenWhenItIsHidden) {
    loadOne();
    click("pushButton_getRuler");
    saveAs(folder.Path("copy.trk"));
    EXPECT_THAT(independent::ReadBinary(FileContent(folder.Path("copy.trk"))).rulers, Not(IsEmpty()));
}

TEST_F(SaveTrackAs, keepsAnExternalTrackExternal) {
    openWorkspace();
    loadContent("new.trk", independent::TextFile(track));
    saveAs(folder.Path("copy.trk"));
    EXPECT_EQ(text("label_fileName"), "External - new.trk");
    operate("Save");
    EXPECT_TRUE(fs::exists(kTracks + "new.trk"));
}

TEST_F(SaveTrackAs, reportsSuccessWhenCancelled) {
    loadOne();
    const std::vector<std::string> before = NamesIn(".");
    operate("Save As");
    EXPECT_EQ(status(), "Save As successfully.");
    EXPECT_EQ(NamesIn("."), before);
    expectNormal();
    expectNoBox();
}

TEST_F(SaveTrackAs, replacesTheOpenFileByAnySpellingOfItsPath) {
    for (const bool textual : {true, false}) {
        const std::string file = folder.Path("one.trk");
        fs::create_directories(folder.Path("sub"));
        fs::remove(folder.Path("link.trk"));
        fs::create_symlink(file, folder.Path("link.trk"));
        for (const std::string& spelling :
             {file, folder.Path("./one.trk"), folder.Path("sub/../one.trk"), folder.Path("link.trk")}) {
            WriteFile(file, textual ? independent::TextFile(track) : independent::BinaryFile(track));
            loadExternal(file);
            edit();
            saveAs(spelling);
            EXPECT_EQ(status(), "Save As successfully.") << spelling;
            expectEdited(file);
            EXPECT_TRUE(fs::is_symlink(folder.Path("link.trk"))) << spelling;
            EXPECT_FALSE(fs::exists("temp.trk"));
            expectNoBox();
        }
    }
}

TEST_F(SaveTrackAs, replacesATrackNamedLikeTheTemporaryOne) {
    const std::string file = folder.Path("temp.trk");
    WriteFile(file, independent::BinaryFile(track));
    loadExternal(file);
    edit();
    saveAs(file);
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(file);
}

TEST_F(SaveTrackAs, reportsAnUnwritableTarget) {
    for (const bool textual : {true, false}) {
        loadContent("one.trk", textual ? independent::TextFile(track) : independent::BinaryFile(track));
        answers.typeFileName(QStringLiteral("/proc/version"));
        operate("Save As");
        expectErrorBox("ERROR_TRACK - Failed to read the target file.");
        EXPECT_EQ(status(), "Load successfully.");
        expectNormal();
        operate("Save As"); // the track is still open; cancelled
        EXPECT_EQ(status(), "Save As successfully.");
    }
}

TEST_F(SaveTrackAs, widthsAreScaledByTheSmallerResolution) {
    independent::Track narrow = track;
    narrow.xResolution = 0.125;
    loadContent("narrow.trk", independent::BinaryFile(narrow));
    saveAs(folder.Path("copy.trk"));
    const independent::Track saved = independent::ReadBinary(FileContent(folder.Path("copy.trk")));
    ASSERT_THAT(saved.rulers, Not(IsEmpty()));
    EXPECT_DOUBLE_EQ(saved.rulers[0].width, 110 * 0.125);
}

TEST_F(SaveTrackAs, showsTheWaitCursorOnlyWhileItWrites) {
    loadOne();
    int waiting = 0;
    const auto noteCursor = [](void* count, const char*, std::size_t size) {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        *static_cast<int*>(count) += cursor != nullptr && cursor->shape() == Qt::WaitCursor ? 1 : 0;
        return static_cast<ssize_t>(size);
    };
    std::FILE* const before = Output2FILE::Target(); // the lines are written during the work
    Output2FILE::Target() = fopencookie(&waiting, "w", {nullptr, noteCursor, nullptr, nullptr});
    saveAs(folder.Path("copy.trk"));
    std::fclose(std::exchange(Output2FILE::Target(), before));
    EXPECT_EQ(status(), "Save As successfully.");
    EXPECT_GT(waiting, 0);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

} // namespace
