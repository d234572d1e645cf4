#include "basalt/AtomicFile.h"
#include "basalt/FileLock.h"
#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"
#include "basalt/bDirectory.h"
#include "basalt/bFile.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include <windows.h>

// Each test works in a fresh folder with a full path, and uses system calls to check what is on the
// disk.

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                         static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(size));
    return wide;
}

/// The form that the system accepts at any length.
std::wstring Long(std::string path) {
    for (char& letter : path)
        if (letter == '/')
            letter = '\\';
    return L"\\\\?\\" + Wide(path);
}

bool IsThere(const std::string& path) {
    return GetFileAttributesW(Long(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

HANDLE Open(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
    return CreateFileW(Long(path).c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

void Put(const std::string& path, const std::string& content) {
    const HANDLE file = Open(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    DWORD written = 0;
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << path;
    WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(file);
}

std::string ContentOf(const std::string& path) {
    const HANDLE file = Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE)
        return "(none)";
    char bytes[100];
    DWORD count = 0;
    ReadFile(file, bytes, sizeof bytes, &count, nullptr);
    CloseHandle(file);
    return {bytes, count};
}

bool Save(const std::string& path, const std::string& content) {
    AtomicFile file(path);
    file.Write(content);
    return file.Commit();
}

std::set<std::string> NamesIn(const std::string& path) {
    std::set<std::string> names;
    FolderReader reader(path.c_str());
    for (FolderEntry entry; reader.Next(&entry) == bOK;)
        names.emplace(entry.name);
    return names;
}

class WindowsFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        wchar_t place[MAX_PATH + 1];
        const DWORD size = GetTempPathW(MAX_PATH, place);
        std::string path;
        for (const wchar_t letter : std::wstring(place, size))
            path +=
                letter == L'\\' ? '/' : static_cast<char>(letter); // a temporary folder with an ASCII name
        folder = path + "corvane b\u00fchne \u6e2c " + std::to_string(GetCurrentProcessId());
        ASSERT_TRUE(CreateDirectoryW(Long(folder).c_str(), nullptr)) << folder;
    }
    void TearDown() override { EXPECT_EQ(bDirectory_Delete(folder.c_str()), bOK); }
    [[nodiscard]] std::string In(const std::string& name) const { return folder + "/" + name; }

    std::string folder;
};

TEST_F(WindowsFiles, areSavedUnderNamesOutsideAnyCodePage) {
    const std::string path = In("\u6e2c\u5b9a \U0001F527 \u00fc.trk");
    EXPECT_TRUE(Save(path, "one"));
    EXPECT_TRUE(Save(path, "two"));
    EXPECT_EQ(ContentOf(path), "two");
    EXPECT_THAT(NamesIn(folder), ElementsAre("\u6e2c\u5b9a \U0001F527 \u00fc.trk"));
    EXPECT_EQ(bFile_Size(path.c_str()), 3);
}

TEST_F(WindowsFiles, areReachedByPathsOfMoreThan260Characters) {
    std::string path = folder;
    while (path.size() < 400) {
        path += "/" + std::string(60, 'n');
        ASSERT_EQ(bDirectory_Create(path.c_str()), bOK) << path;
    }
    const std::string file = path + "/track.trk";
    EXPECT_TRUE(Save(file, "far away"));
    EXPECT_EQ(ContentOf(file), "far away");
    FileFacts facts;
    EXPECT_TRUE(InputFile(file.c_str()).Ask(&facts));
    EXPECT_EQ(facts.size, 8);
    Put(path + "/new", "nearer");
    EXPECT_EQ(ReplaceAtomically(path + "/new", file).message(), std::error_code().message());
    EXPECT_EQ(ContentOf(file), "nearer");
    EXPECT_THAT(NamesIn(path), ElementsAre("track.trk"));
}

TEST_F(WindowsFiles, markedAsReadOnlyStayUnchanged) {
    Put(In("track.trk"), "old");
    SetFileAttributesW(Long(In("track.trk")).c_str(), FILE_ATTRIBUTE_READONLY);
    AtomicFile file(In("track.trk"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.Failure(), std::errc::permission_denied);
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ(ContentOf(In("track.trk")), "old");
    EXPECT_THAT(NamesIn(folder), ElementsAre("track.trk"));
}

TEST_F(WindowsFiles, openInAnotherProgramStayUnchanged) {
    Put(In("track.trk"), "old");
    // As a program opens a file that no other may change.
    const HANDLE other = Open(In("track.trk"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    EXPECT_FALSE(Save(In("track.trk"), "new"));
    EXPECT_EQ(ContentOf(In("track.trk")), "old");
    EXPECT_THAT(NamesIn(folder), ElementsAre("track.trk"));
    CloseHandle(other);
    EXPECT_TRUE(Save(In("track.trk"), "new"));
    EXPECT_EQ(ContentOf(In("track.trk")), "new");
}

TEST_F(WindowsFiles, openedByAnotherProgramWhileSavingStayUnchanged) {
    Put(In("track.trk"), "old");
    AtomicFile file(In("track.trk"));
    file.Write("new");
    const HANDLE other = Open(In("track.trk"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(file.Failure());
    CloseHandle(other);
    EXPECT_EQ(ContentOf(In("track.trk")), "old");
    EXPECT_THAT(NamesIn(folder), ElementsAre("track.trk"));
}

TEST_F(WindowsFiles, refuseNamesThatTheSystemReserves) {
    const FolderHandle handle(folder, FolderHandle::Links::Followed);
    for (const char* name : {"CON",         "nul",       "NUL.txt", "com1",  "LPT9.trk",
                             "AUX .trk",    "COM\u00b2", "name.",   "name ", "name:stream",
                             "name::$DATA", "a\\b",      "a/b",     "a?b",   "a*b",
                             "a\"b",        "..",        "",        "a\nb",  "\xff"}) {
        HiddenFile file(handle, 0600);
        ASSERT_TRUE(file.IsOpen());
        EXPECT_FALSE(file.Keep(name)) << name;
        EXPECT_EQ(handle.MakeFolder(name, 0700), std::errc::invalid_argument) << name;
        EXPECT_FALSE(handle.OpenFolder(name).IsOpen()) << name;
        EXPECT_FALSE(InputFile(handle, name).IsOpen()) << name;
        FileFacts facts;
        EXPECT_EQ(handle.Ask(name, &facts), std::errc::invalid_argument) << name;
    }
    EXPECT_THAT(NamesIn(folder), IsEmpty());
    for (const char* name : {"CONSOLE", "NULL.txt", "COM", "COM10", "name.trk", "a b", ".hidden"})
        EXPECT_FALSE(handle.MakeFolder(name, 0700)) << name;
}

TEST_F(WindowsFiles, areNotReplacedByNamesThatDifferOnlyInCase) {
    const FolderHandle handle(folder, FolderHandle::Links::Followed);
    Put(In("Track.trk"), "old");
    ASSERT_FALSE(handle.MakeFolder("Folder", 0700));
    FileFacts facts;
    EXPECT_FALSE(handle.Ask("Track.trk", &facts));
    EXPECT_EQ(facts.size, 3);
    EXPECT_EQ(handle.Ask("track.TRK", &facts), std::errc::file_exists);
    EXPECT_EQ(handle.Ask("other", &facts), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(InputFile(handle, "track.TRK").IsOpen());
    EXPECT_EQ(handle.MakeFolder("FOLDER", 0700), std::errc::file_exists);
    EXPECT_FALSE(handle.OpenFolder("FOLDER").IsOpen());
    EXPECT_TRUE(handle.OpenFolder("Folder").IsOpen());
    EXPECT_EQ(handle.RenameToFree("Track.trk", "FOLDER"), std::errc::file_exists);
    EXPECT_EQ(ContentOf(In("Track.trk")), "old");
}

TEST_F(WindowsFiles, areRenamedRemovedAndReplacedInTheirFolder) {
    const FolderHandle handle(folder, FolderHandle::Links::Followed);
    Put(In("one"), "1");
    EXPECT_FALSE(handle.RenameToFree("one", "two"));
    EXPECT_EQ(ContentOf(In("two")), "1");
    SetFileAttributesW(Long(In("two")).c_str(), FILE_ATTRIBUTE_READONLY);
    {
        HiddenFile file(handle, 0600);
        ASSERT_TRUE(file.Write("22", 2) && file.Sync());
        EXPECT_TRUE(file.Keep("two"));
    }
    EXPECT_EQ(ContentOf(In("two")), "22");
    { HiddenFile forgotten(handle, 0600); }
    EXPECT_THAT(NamesIn(folder), ElementsAre("two"));
    EXPECT_FALSE(handle.RemoveFile("two"));
    EXPECT_THAT(NamesIn(folder), IsEmpty());
    EXPECT_FALSE(handle.Sync());
}

TEST_F(WindowsFiles, haveTheGivenTimeAndAttribute) {
    const FolderHandle handle(folder, FolderHandle::Links::Followed);
    constexpr std::int64_t kTime = 1'234'567'890;
    {
        HiddenFile file(handle, 0600);
        EXPECT_TRUE(file.Describe({.modified = kTime, .modifiedFraction = 500, .permissions = 0444}));
        EXPECT_TRUE(file.Keep("file"));
    }
    FileFacts facts;
    EXPECT_FALSE(handle.Ask("file", &facts));
    EXPECT_EQ(facts.modified, kTime);
    EXPECT_EQ(facts.modifiedFraction, 500);
    EXPECT_EQ(facts.permissions, 0444U);
    EXPECT_FALSE(handle.Describe({.kind = FileKind::Folder, .modified = kTime, .permissions = 0755}));
    EXPECT_FALSE(handle.Ask(".", &facts));
    EXPECT_EQ(facts.modified, kTime);
    EXPECT_EQ(facts.kind, FileKind::Folder);
}

TEST_F(WindowsFiles, areListedCompletely) {
    std::set<std::string> names;
    for (int i = 0; i < 700; ++i) {
        names.insert("a name of some length for a list of several pieces " + std::to_string(i));
        Put(In(*names.rbegin()), "");
    }
    for (const std::string& name : names)
        Put(In(name), "");
    EXPECT_EQ(NamesIn(folder), names);
}

TEST_F(WindowsFiles, inATreeAreRemovedEvenWhenReadOnly) {
    ASSERT_EQ(bDirectory_Create(In("tree").c_str()), bOK);
    ASSERT_EQ(bDirectory_Create(In("tree/below").c_str()), bOK);
    Put(In("tree/below/file"), "x");
    SetFileAttributesW(Long(In("tree/below/file")).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(bDirectory_Delete(In("tree").c_str()), bOK);
    EXPECT_FALSE(IsThere(In("tree")));
    EXPECT_EQ(bDirectory_Delete(In("tree").c_str()), bERROR_NOT_FOUND);
}

TEST_F(WindowsFiles, throughALinkAreNeitherRemovedNorReached) {
    ASSERT_EQ(bDirectory_Create(In("outside").c_str()), bOK);
    ASSERT_EQ(bDirectory_Create(In("tree").c_str()), bOK);
    Put(In("outside/file"), "x");
    if (CreateSymbolicLinkW(Long(In("tree/link")).c_str(), Long(In("outside")).c_str(),
                            SYMBOLIC_LINK_FLAG_DIRECTORY) == FALSE)
        GTEST_SKIP() << "this user cannot make links: " << GetLastError();
    EXPECT_FALSE(FolderHandle(In("tree"), FolderHandle::Links::Followed).OpenFolder("link").IsOpen());
    EXPECT_FALSE(FolderHandle(In("tree/link"), FolderHandle::Links::Refused).IsOpen());
    EXPECT_EQ(bDirectory_Delete(In("tree").c_str()), bOK);
    EXPECT_FALSE(IsThere(In("tree")));
    EXPECT_EQ(ContentOf(In("outside/file")), "x");
}

TEST_F(WindowsFiles, areLockedByOneProcessAtATime) {
    const FolderHandle handle(folder, FolderHandle::Links::Followed);
    {
        const FileLock first(handle, "a.lock");
        EXPECT_EQ(first.Result(), FileLock::State::Taken) << first.Failure().message();
        EXPECT_EQ(FileLock(handle, "a.lock").Result(), FileLock::State::HeldByAnother);
    }
    EXPECT_EQ(FileLock(handle, "a.lock").Result(), FileLock::State::Taken);
    EXPECT_EQ(FileLock(handle, "CON").Result(), FileLock::State::Failed);
}

TEST_F(WindowsFiles, areNotReadWhenTheyAreDevices) {
    EXPECT_EQ(InputFile("NUL").Failure(), std::errc::not_supported);
    EXPECT_EQ(InputFile(folder.c_str()).Failure(), std::errc::is_a_directory);
    EXPECT_EQ(bFile_Exists("NUL"), 0);
}

TEST_F(WindowsFiles, havePathsThatAreSplitCorrectly) {
    EXPECT_EQ(FolderOf("C:/one/two"), "C:/one");
    EXPECT_EQ(FolderOf("C:\\one\\two"), "C:\\one");
    EXPECT_EQ(FolderOf("C:/two"), "C:/");
    EXPECT_EQ(FolderOf("C:two"), "C:");
    EXPECT_EQ(FolderOf("two"), ".");
    EXPECT_EQ(NameOf("C:/one/two"), "two");
    EXPECT_EQ(NameOf("C:two"), "two");
    EXPECT_EQ(NameOf("one\\two"), "two");
    EXPECT_EQ(NameOf("two/"), "");
    EXPECT_EQ(AbsolutePath(folder + "/a/../b/./c"), In("b/c"));
}

TEST_F(WindowsFiles, areTheSameByAnyPath) {
    Put(In("Track.trk"), "x");
    Put(In("other.trk"), "x");
    EXPECT_TRUE(LeadToTheSame(In("Track.trk"), In("./track.TRK")));
    EXPECT_FALSE(LeadToTheSame(In("Track.trk"), In("other.trk")));
    EXPECT_FALSE(LeadToTheSame(In("none"), In("none")));
}

} // namespace
