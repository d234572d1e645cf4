#include "WindowTest.h"

#include <QDir>
#include <QLabel>
#include <QLocale>

#include <clocale>
#include <filesystem>

#include <windows.h>

// What a desktop of this system has in store for saving: each accident gets its message, the old file stays
// as it was, and the work stays open and can be saved afterwards.

namespace {

namespace fs = std::filesystem;

const std::string kTarget = "ERROR_TRACK - Failed to read the target file.";

/// A file that another program has opened.
class OpenElsewhere {
  public:
    OpenElsewhere(const std::string& path, DWORD shared)
        : file(CreateFileW(Utf8Path(path).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0,
                           nullptr)) {}
    OpenElsewhere(const OpenElsewhere&) = delete;
    OpenElsewhere& operator=(const OpenElsewhere&) = delete;
    ~OpenElsewhere() { CloseHandle(file); }
    [[nodiscard]] bool IsOpen() const { return file != INVALID_HANDLE_VALUE; }

  private:
    HANDLE file;
};

/// A folder of more than 300 characters, each name of which is short enough.
std::string DeepFolder(const std::string& from) {
    std::string deep = from;
    while (deep.size() <= 300)
        deep += "/" + std::string(80, 'w');
    QDir().mkpath(QString::fromStdString(deep));
    return deep;
}

class WindowsDesktop : public WindowTest {
  protected:
    void SetUp() override { openWindow(); }

    void TearDown() override {
        QLocale::setDefault(QLocale::c());
        QDir(QString::fromStdString(folder.Path("deep"))).removeRecursively();
        WindowTest::TearDown();
    }

    void openTrackOfTheWorkspace() {
        makeBackup(folder.Path("station.osbak"), {{"b.trk", independent::BinaryFile(track)}});
        loadBackup(folder.Path("station.osbak"));
        choose("comboBox_file", "b.trk");
        operate("Load");
        ASSERT_EQ(status(), "Load successfully.");
        before = FileContent(saved);
        type("lineEdit_lineLength", "33");
    }

    void openExternalTrack(const std::string& path) {
        WriteFile(folder.Path("one.trk"), independent::BinaryFile(track));
        loadExternal(folder.Path(path));
        type("lineEdit_lineLength", "33");
    }

    void saveAs(const std::string& path) {
        answers.typeFileName(QString::fromStdString(path));
        operate("Save As");
    }

    void expectRefused() {
        expectErrorBox(kTarget);
        EXPECT_EQ(FileContent(saved), before);
        EXPECT_EQ(paths()[0].lengths[0], 33) << "the work is still open";
        EXPECT_FALSE(fs::exists("temp.trk"));
    }

    static void expectEdited(const std::string& path) {
        const auto segments = independent::ReadBinary(FileContent(path)).segments;
        ASSERT_FALSE(segments.empty()) << path;
        EXPECT_EQ(segments[0].length, 33);
    }

    const std::string saved = kTracks + "b.trk";
    const independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
    std::string before;
};

TEST_F(WindowsDesktop, ATrackThatAnotherProgramHoldsStaysAsItWas) {
    openTrackOfTheWorkspace();
    {
        const OpenElsewhere program(saved, FILE_SHARE_READ);
        ASSERT_TRUE(program.IsOpen());
        operate("Save");
        expectRefused();
    }
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(saved);
}

TEST_F(WindowsDesktop, ATrackThatIsMarkedReadOnlyStaysAsItWas) {
    openTrackOfTheWorkspace();
    ASSERT_NE(SetFileAttributesW(Utf8Path(saved).c_str(), FILE_ATTRIBUTE_READONLY), FALSE);
    operate("Save");
    expectRefused();
    ASSERT_NE(SetFileAttributesW(Utf8Path(saved).c_str(), FILE_ATTRIBUTE_NORMAL), FALSE);
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(saved);
}

TEST_F(WindowsDesktop, ABackupThatAnotherProgramHoldsStaysAsItWas) {
    openTrackOfTheWorkspace();
    operate("Save");
    const std::string backup = FileContent(folder.Path("station.osbak"));
    {
        const OpenElsewhere program(folder.Path("station.osbak"), FILE_SHARE_READ);
        ASSERT_TRUE(program.IsOpen());
        click("toolButton_upload");
        const std::vector<SeenBox> boxes = answers.takeBoxes();
        ASSERT_EQ(boxes.size(), 1U);
        EXPECT_TRUE(boxes[0].text.contains(QStringLiteral("station.osbak"))) << boxes[0].text.toStdString();
        EXPECT_EQ(FileContent(folder.Path("station.osbak")), backup);
    }
    click("toolButton_upload");
    EXPECT_EQ(status(), "Saved the backup file successfully.");
    EXPECT_NE(FileContent(folder.Path("station.osbak")), backup);
}

TEST_F(WindowsDesktop, NamesOutsideTheCodePageAreOpenedAndSaved) {
    const std::string odd = "Gehäuse 測定 Ωж.trk";
    WriteFile(folder.Path(odd), independent::BinaryFile(track));
    loadExternal(folder.Path(odd));
    EXPECT_EQ(status(), "Load successfully.");
    EXPECT_EQ(text("label_fileName"), "External - " + odd);
    type("lineEdit_lineLength", "33");
    saveAs(folder.Path("копия " + odd));
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(folder.Path("копия " + odd));
    expectNoBox();
}

TEST_F(WindowsDesktop, PathsOfMoreThan300CharactersAreOpenedAndSaved) {
    const std::string deep = DeepFolder(folder.Path("deep"));
    openExternalTrack("one.trk");
    saveAs(deep + "/copy.trk");
    expectNoBox();
    EXPECT_EQ(status(), "Save As successfully.");
    loadExternal(deep + "/copy.trk");
    EXPECT_EQ(status(), "Load successfully.");
    EXPECT_EQ(paths()[0].lengths[0], 33);
}

TEST_F(WindowsDesktop, NamesOfDevicesAreRefusedAsTargets) {
    openExternalTrack("one.trk");
    saveAs(folder.Path("NUL.trk"));
    expectErrorBox(kTarget);
    EXPECT_EQ(paths()[0].lengths[0], 33);
    saveAs(folder.Path("other.trk"));
    expectEdited(folder.Path("other.trk"));
}

TEST_F(WindowsDesktop, ADecimalCommaOfTheRegionChangesNoFile) {
    WriteFile(folder.Path("text.trk"), independent::TextFile(track));
    const auto editAndSaveAs = [this](const std::string& name) {
        loadExternal(folder.Path("text.trk"));
        EXPECT_EQ(status(), "Load successfully.");
        type("lineEdit_lineLength", "33");
        saveAs(folder.Path(name));
        EXPECT_EQ(status(), "Save As successfully.");
        expectEdited(folder.Path(name));
    };
    editAndSaveAs("point.trk");
    const QLocale german(QLocale::German, QLocale::Germany);
    ASSERT_EQ(german.decimalPoint(), QLatin1Char(','));
    QLocale::setDefault(german);
    EXPECT_STREQ(std::localeconv()->decimal_point, ".") << "nothing sets the process's locale";
    editAndSaveAs("comma.trk");
    EXPECT_EQ(FileContent(folder.Path("comma.trk")), FileContent(folder.Path("point.trk")));
}

/// The variable names a folder of a small file system of its own; packaging/windows/test makes one.
TEST_F(WindowsDesktop, AFullDiskLeavesTheOldFile) {
    const QString disk = qEnvironmentVariable("CORVANE_SMALL_DISK");
    if (disk.isEmpty())
        GTEST_SKIP() << "no small disk";
    const std::string target = disk.toStdString() + "/target.trk";
    const std::string filler = disk.toStdString() + "/filler";
    WriteFile(target, "old");
    openExternalTrack("one.trk");
    {
        std::string rest(1024, 'x');
        std::string all;
        try {
            for (;;) {
                all += rest;
                WriteFile(filler, all);
            }
        } catch (const std::runtime_error&) { // full
        }
    }
    saveAs(target);
    expectErrorBox(kTarget);
    EXPECT_EQ(FileContent(target), "old");
    EXPECT_EQ(paths()[0].lengths[0], 33);
    fs::remove(Utf8Path(filler));
    saveAs(target);
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(target);
}

} // namespace
