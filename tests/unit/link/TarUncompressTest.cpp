#include "link/FileUtils.h"

#include "FailingAllocator.h"
#include "FileSizeLimit.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "RunTool.h"
#include "TarBlocks.h"
#include "TemporaryFolder.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "cinder/UnpackFolder.h"
#include "cinder/bTar.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <set>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

// The ends and kinds that no archive of a test has: the linker puts this function in the place of the
// platform's (see --wrap in CMakeLists.txt).
bStatus EndingRead(bTar*, char*, std::size_t, int*,
                   std::int64_t*) __asm__("__wrap__Z14bTar_BeginReadP4bTarPcmPiPl");
bStatus RealRead(bTar*, char*, std::size_t, int*,
                 std::int64_t*) __asm__("__real__Z14bTar_BeginReadP4bTarPcmPiPl");

namespace {

bStatus endBehindTheFirstEntry = bOK; ///< none unless a test sets it
int entriesRead = 0;
int kindOfDirectories = bTar_DIRECTORY;

} // namespace

bStatus EndingRead(bTar* tar, char* name, std::size_t capacity, int* kind, std::int64_t* size) {
    if (endBehindTheFirstEntry != bOK && entriesRead++ > 0)
        return endBehindTheFirstEntry;
    const bStatus status = RealRead(tar, name, capacity, kind, size);
    if (status == bOK && *kind == bTar_DIRECTORY)
        *kind = kindOfDirectories;
    return status;
}

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using Tree = std::map<std::string, std::string>;

/// How unpacking ends: status, message and function of its failure, or "unpacked".
std::string Unpacking(const std::string& archive, const std::string& target,
                      bAlloc allocator = bAlloc_Application()) {
    try {
        TarUncompress(archive, target, allocator);
        return "unpacked";
    } catch (const Ve::Exception& failure) {
        EXPECT_NE(failure.Line(), 0);
        EXPECT_THAT(failure.File(), testing::HasSubstr("FileUtils.cpp"));
        return std::to_string(failure.Status()) + " " + failure.what() + " in " + failure.Function();
    }
}

/// Unpacks these bytes into "out".
std::string UnpackingOf(const std::string& archive) {
    WriteFile("in.tar", archive);
    return Unpacking("in.tar", "out");
}

std::string Failure(bStatus status, const std::string& message) {
    return std::to_string(status) + " " + message + " in TarUncompress";
}

/// How unpacking strictly ends.
std::string StrictStatus(const std::string& archive) {
    WriteFile("strict.tar", archive);
    try {
        UnpackFolderStrictly("strict.tar", "strict", bAlloc_Application());
        return "unpacked";
    } catch (const Ve::Exception& failure) {
        return std::to_string(failure.Status()) + " " + failure.what();
    }
}

TEST(TarUncompress, restoresATree) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("top", "t") + TarFolder("a") +
                          TarFile("a/file", std::string(100'000, 'f')) + TarFolder("a/empty") +
                          TarFile("zero", "") + TarEnd()),
              "unpacked");
    EXPECT_EQ(FolderTree("out"), (Tree{{"top", "t"},
                                       {"a/", ""},
                                       {"a/file", std::string(100'000, 'f')},
                                       {"a/empty/", ""},
                                       {"zero", ""}}));
}

TEST(TarUncompress, treatsEveryKindButAFileAsADirectory) {
    const TemporaryFolder folder;
    for (const int kind : {2, -1}) {
        kindOfDirectories = kind;
        EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile("a/file", "x") + TarEnd()), "unpacked") << kind;
        EXPECT_EQ(FolderTree("out"), (Tree{{"a/", ""}, {"a/file", "x"}})) << kind;
    }
    kindOfDirectories = bTar_DIRECTORY;
}

TEST(TarUncompress, removesTheTargetsOldContent) {
    const TemporaryFolder folder;
    fs::create_directories("out/old");
    WriteFile("out/old/file", "x");
    EXPECT_EQ(UnpackingOf(TarFile("new", "n") + TarEnd()), "unpacked");
    EXPECT_EQ(FolderTree("out"), (Tree{{"new", "n"}}));
}

TEST(TarUncompress, acceptsATargetThatEndsInASlash) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarFile("../evil", "x") + TarEnd());
    EXPECT_EQ(Unpacking("in.tar", "out/"), Failure(bERROR_FILE, "Failed to open file - out/../evil"));
}

TEST(TarUncompress, createsAtMostOneMissingLevelForAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("a/file", "x") + TarEnd()), "unpacked");
    EXPECT_EQ(FileContent("out/a/file"), "x");
    EXPECT_EQ(UnpackingOf(TarFile("a/b/file", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to create the directory - out/a/b/file"));
    EXPECT_EQ(UnpackingOf(TarFolder("a/b") + TarEnd()),
              Failure(bERROR_FILE, "Failed to create the directory - out/a/b"));
}

TEST(TarUncompress, keepsTheLastOfTwoEntriesOfOneName) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile("a/f", "longer") + TarFolder("a") + TarFile("a/f", "x") +
                          TarEnd()),
              "unpacked");
    EXPECT_EQ(FolderTree("out"), (Tree{{"a/", ""}, {"a/f", "x"}}));
}

TEST(TarUncompress, readsTheArchivesOfGnuTarAndBsdtar) {
    const TemporaryFolder folder;
    const std::string longPart(90, 'l');
    fs::create_directories("tree/" + longPart + "/" + longPart);
    fs::create_directory("tree/empty");
    WriteFile("tree/" + longPart + "/" + longPart + "/deep.trk", "deep");
    WriteFile("tree/größe.trk", std::string(70'000, 'g'));
    for (const char* const tool :
         {"tar --format=gnu -cf in.tar -C tree .", "tar --format=pax -cf in.tar -C tree .",
          "tar --format=ustar -cf in.tar -C tree .",
          "LC_ALL=C.UTF-8 bsdtar --format=pax -cf in.tar -C tree .",
          "bsdtar --format=gnutar -cf in.tar -C tree .", "bsdtar --format=ustar -cf in.tar -C tree ."}) {
        ASSERT_EQ(RunTool(tool), "") << tool;
        EXPECT_EQ(Unpacking("in.tar", "out"), "unpacked") << tool;
        EXPECT_EQ(FolderTree("out"), FolderTree("tree")) << tool;
        EXPECT_EQ(StrictStatus(FileContent("in.tar")), "unpacked") << tool;
    }
}

TEST(TarUncompress, restoresTheArchivesOfTarCompress) {
    const TemporaryFolder folder;
    fs::create_directories("tree/a/b/c");
    WriteFile("tree/a/u\xcc\x88.trk", "decomposed");
    WriteFile("tree/a/b/gr\xf6\xdf"
              "e",
              "no UTF-8");
    WriteFile("tree/a/line\nfeed", "x");
    WriteFile("tree/" + std::string(255, 'n'), "n");
    WriteFile("tree/large", std::string(3'000'001, 'l'));
    TarCompress("tree", "in.tar", bAlloc_Application());
    EXPECT_EQ(Unpacking("in.tar", "out"), "unpacked");
    EXPECT_EQ(FolderTree("out"), FolderTree("tree"));
    EXPECT_EQ(StrictStatus(FileContent("in.tar")), "unpacked");
}

TEST(TarUncompress, unpacksARealBackupOnBothLevelsAndItPacksAgain) {
    const TemporaryFolder folder;
    const std::string workspace = "backup/workspaces/Workspace.osws";
    ASSERT_EQ(Unpacking(TestData("station.osbak"), "backup"), "unpacked");
    ASSERT_EQ(Unpacking(workspace, "osws"), "unpacked");
    const Tree tree = FolderTree("osws");
    EXPECT_EQ(tree.at("vdk/ContourPath/fault.trk"), FileContent(TestData("fault.trk")));
    const Tree before = FolderTree("backup");
    fs::create_directory("gnu");
    ASSERT_EQ(RunTool("tar -xf '" + TestData("station.osbak") + "' -C gnu"), "");
    EXPECT_EQ(before, FolderTree("gnu"));
    TarCompress("osws", workspace, bAlloc_Application());
    TarCompress("backup", "again.osbak", bAlloc_Application());
    ASSERT_EQ(Unpacking("again.osbak", "backup"), "unpacked");
    EXPECT_EQ(FolderTree("backup").size(), before.size());
    ASSERT_EQ(Unpacking(workspace, "osws"), "unpacked");
    EXPECT_EQ(FolderTree("osws"), tree);
}

TEST(TarUncompress, skipsLinksAndSpecialFiles) {
    const TemporaryFolder folder;
    std::string archive = TarLink("symbolic", '2', "/etc") + TarLink("hard", '1', "/etc/passwd");
    for (const char type : {'3', '4', '6'})
        archive += TarLink("device", type, "");
    EXPECT_EQ(UnpackingOf(archive + TarFile("last", "x") + TarEnd()), "unpacked");
    EXPECT_EQ(FolderTree("out"), (Tree{{"last", "x"}}));
}

TEST(TarUncompress, writesNothingThroughALinkOfTheArchive) {
    const TemporaryFolder folder;
    fs::create_directory("outside");
    EXPECT_EQ(UnpackingOf(TarLink("door", '2', "../outside") + TarFile("door/evil", "x") + TarEnd()),
              "unpacked");
    EXPECT_TRUE(fs::is_empty("outside"));
    EXPECT_EQ(FileContent("out/door/evil"), "x");
}

TEST(TarUncompress, refusesNamesOutsideTheTarget) {
    const TemporaryFolder folder;
    fs::create_directory("inside");
    fs::current_path("inside");
    for (const char* const name :
         {"../evil", "a/../../evil", "/evil", "//evil", "..\\evil", "a\\..\\..\\evil", "\\evil", "C:evil",
          "C:\\evil", "c:/evil", "./../evil", "a/.."}) {
        const std::string path = std::string("out/") + name;
        EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile(name, "x") + TarEnd()),
                  Failure(bERROR_FILE, "Failed to open file - " + path));
        EXPECT_EQ(FolderTree("out"), (Tree{{"a/", ""}})) << name;
        EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFolder(name) + TarEnd()),
                  Failure(bERROR_FILE, "Failed to create the directory - " + path));
        EXPECT_EQ(FolderTree("out"), (Tree{{"a/", ""}})) << name;
        EXPECT_EQ(StrictStatus(TarFile(name, "x") + TarEnd()),
                  "-997 Failed to open file - strict/" + std::string(name));
    }
    fs::remove_all("out");
    fs::remove_all("strict");
    fs::current_path("..");
    EXPECT_EQ(FolderTree("."), (Tree{{"inside/", ""},
                                     {"inside/in.tar", FileContent("inside/in.tar")},
                                     {"inside/strict.tar", FileContent("inside/strict.tar")}}));
    EXPECT_FALSE(fs::exists("/evil"));
}

TEST(TarUncompress, refusesNamesThatNoFileCanHave) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("", "x") + TarEnd()), Failure(bERROR_FILE, "Failed to open file - out/"));
    EXPECT_EQ(UnpackingOf(TarFile(".", "x") + TarEnd()), Failure(bERROR_FILE, "Failed to open file - out/."));
    EXPECT_EQ(UnpackingOf(TarFile("a/.", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to open file - out/a/."));
    const std::string name(256, 'n');
    EXPECT_EQ(UnpackingOf(TarGnuLongName(name) + TarFile("short", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to open file - out/" + name));
}

TEST(TarUncompress, refusesATooDeepTree) {
    const TemporaryFolder folder;
    std::string archive;
    std::string name;
    for (int i = 0; i < 65; ++i) {
        name += i == 0 ? "d" : "/d";
        archive += TarGnuLongName(name) + TarFolder("d");
    }
    EXPECT_EQ(UnpackingOf(archive + TarEnd()),
              Failure(bERROR_FILE, "Failed to create the directory - out/" + name));
}

TEST(TarUncompress, showsNoControlCharactersInItsMessages) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("../a\nb\x1b", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to open file - out/../a?b?"));
}

TEST(TarUncompress, failsOnATooLongName) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("first", "1") + TarPax(PaxRecord("path", std::string(600, 'n'))) +
                          TarFile("short", "x") + TarFile("last", "2") + TarEnd()),
              Failure(bERROR_TOO_LONG, "Failed to read item - " + std::string(511, 'n')));
    EXPECT_EQ(FolderTree("out"), (Tree{{"first", "1"}}));
}

TEST(TarUncompress, failsBeforeWritingAnEntryLargerThanTheArchive) {
    const TemporaryFolder folder;
    TarBlockEntry entry;
    entry.name = "huge";
    entry.content = std::string(2000, 'x');
    for (const long long size : {3600LL, 10LL << 30, 1LL << 62}) {
        entry.size = size;
        EXPECT_EQ(UnpackingOf(TarFile("first", "1") + TarBlocks(entry) + TarEnd()),
                  Failure(bERROR_FORMAT, "Failed to read item - huge"));
        EXPECT_EQ(FolderTree("out"), (Tree{{"first", "1"}}));
    }
    EXPECT_EQ(UnpackingOf(TarPax(PaxRecord("GNU.sparse.name", "hole") +
                                 PaxRecord("GNU.sparse.size", "4398046511104") +
                                 PaxRecord("GNU.sparse.map", "4398046511103,1")) +
                          TarFile("short", "x") + TarEnd()),
              Failure(bERROR_FORMAT, "Failed to read item - hole"));
}

TEST(TarUncompress, restoresASmallSparseFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarPax(PaxRecord("GNU.sparse.name", "hole") + PaxRecord("GNU.sparse.size", "1200") +
                                 PaxRecord("GNU.sparse.map", "500,3,900,2")) +
                          TarFile("short", "abcde") + TarEnd()),
              "unpacked");
    EXPECT_EQ(FileContent("out/hole"),
              std::string(500, '\0') + "abc" + std::string(397, '\0') + "de" + std::string(298, '\0'));
}

TEST(TarUncompress, unpacksADamagedArchiveUpToTheDamageAndLogsIt) {
    const TemporaryFolder folder;
    LogCapture log;
    TarBlockEntry spoilt;
    spoilt.name = "b";
    spoilt.spoiltChecksum = true;
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarBlocks(spoilt) + TarFile("c", "x") + TarEnd()), "unpacked");
    EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}}));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: The archive is damaged - Damaged tar archive at byte 1536",
                                         "ERROR: (ERROR_FORMAT) The archive is damaged - in.tar"));
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarEnd()), "unpacked");
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_EQ(UnpackingOf(""), "unpacked");
    EXPECT_THAT(FolderTree("out"), IsEmpty());
    EXPECT_EQ(UnpackingOf(std::string(5000, '#')), "unpacked");
    EXPECT_THAT(FolderTree("out"), IsEmpty());
}

TEST(TarUncompress, failsWhereTheArchiveCannotBeReadToItsEnd) {
    const TemporaryFolder folder;
    LogCapture log;
    for (const auto& [end, failure] :
         {std::pair{bERROR_FILE, Failure(bERROR_FILE, "Failed to read item - in.tar")},
          {bERROR_LIMIT, Failure(bERROR_LIMIT, "Failed to read item - in.tar")},
          {bERROR_MEMORY, Failure(bERROR_MEMORY, "Failed to allocate memory.")},
          {bERROR_TOO_LONG, Failure(bERROR_TOO_LONG, "Failed to read item - a")},
          {bERROR_FORMAT, std::string("unpacked")},
          {bERROR_END, std::string("unpacked")}}) {
        entriesRead = 0;
        endBehindTheFirstEntry = end;
        EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFile("b", "x") + TarEnd()), failure) << end;
        EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}})) << end;
    }
    endBehindTheFirstEntry = bOK;
    std::vector<std::string> errors = log.Lines();
    std::erase_if(errors, [](const std::string& line) { return line.starts_with("INFO"); });
    EXPECT_THAT(errors, ElementsAre("ERROR: (ERROR_FORMAT) The archive is damaged - in.tar"));
}

TEST(TarUncompress, logsWhyItFailed) {
    const TemporaryFolder folder;
    LogCapture log;
    WriteFile("in.tar", TarFile("large", std::string(300'000, 'l')) + TarEnd());
    {
        const FileSizeLimit limit(200'000);
        EXPECT_NE(Unpacking("in.tar", "out"), "unpacked");
    }
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Failed to write out/large - File too large"));
    EXPECT_NE(UnpackingOf(TarFile("../evil", "x") + TarEnd()), "unpacked");
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to open file - out/../evil - the name leads outside, is no "
                            "file's, or nests too deep"));
    TarBlockEntry lie;
    lie.name = "lie";
    lie.size = 100'000;
    EXPECT_NE(UnpackingOf(TarBlocks(lie) + TarEnd()), "unpacked");
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to read item - lie - an entry claims more bytes than the "
                            "archive can hold at byte 512"));
    EXPECT_NE(Unpacking("in.tar", "missing/out"), "unpacked");
    EXPECT_THAT(
        log.Lines(),
        ElementsAre("INFO: Failed to create the directory - missing/out - No such file or directory"));
}

TEST(TarUncompress, strictlyRefusesTruncatedOrDamagedArchives) {
    const TemporaryFolder folder;
    TarBlockEntry spoilt;
    spoilt.name = "b";
    spoilt.spoiltChecksum = true;
    const std::string damaged = "-3 The archive is damaged - strict.tar";
    EXPECT_EQ(StrictStatus(TarFile("a", "x") + TarBlocks(spoilt) + TarEnd()), damaged);
    EXPECT_EQ(StrictStatus(TarFile("a", "x")), damaged);
    EXPECT_EQ(StrictStatus(""), damaged);
    EXPECT_EQ(StrictStatus(std::string(5000, '#')), damaged);
    EXPECT_EQ(StrictStatus(TarFile("a", "x") + TarEnd()), "unpacked");
    EXPECT_EQ(StrictStatus(TarEnd()), "unpacked");
}

TEST(TarUncompress, leavesNoPartialFileOfATruncatedArchive) {
    const TemporaryFolder folder;
    const std::string large(5000, 'l');
    const std::string archive = TarFolder("a") + TarFile("a/large", large) +
                                TarGnuLongName(std::string(150, 'g')) + TarFile("short", "gnu") +
                                TarFile("last", "x") + TarEnd();
    ASSERT_EQ(UnpackingOf(archive), "unpacked");
    const Tree whole = FolderTree("out");
    int failures = 0;
    for (std::size_t length = 0; length < archive.size(); length += 512) {
        const std::string result = UnpackingOf(archive.substr(0, length));
        if (result != "unpacked") {
            EXPECT_THAT(result, testing::StartsWith("-3 Failed to read item - ")) << length;
            ++failures;
        }
        for (const auto& [name, content] : FolderTree("out"))
            EXPECT_EQ(content, whole.at(name)) << length;
        EXPECT_NE(StrictStatus(archive.substr(0, length)), "unpacked") << length;
    }
    EXPECT_EQ(failures, 10 + 1 + 1); // within the data of the three files, their last block missing included
}

TEST(TarUncompress, setsPermissionsWithin0777AndOwnerAccess) {
    const TemporaryFolder folder;
    umask(022);
    TarBlockEntry entry;
    entry.name = "suid";
    entry.mode = 07777;
    TarBlockEntry closed;
    closed.name = "closed";
    closed.type = '5';
    closed.mode = 0;
    TarBlockEntry secret;
    secret.name = "secret";
    secret.mode = 0400;
    ASSERT_EQ(UnpackingOf(TarBlocks(entry) + TarBlocks(closed) + TarBlocks(secret) +
                          TarFile("closed/a", "x") + TarEnd()),
              "unpacked");
    const auto mode = [](const char* path) {
        struct stat state {};
        EXPECT_EQ(stat(path, &state), 0);
        return state.st_mode & 07777U;
    };
    EXPECT_EQ(mode("out/suid"), 0777U);
    EXPECT_EQ(mode("out/closed"), 0700U);
    EXPECT_EQ(mode("out/secret"), 0400U);
    EXPECT_EQ(mode("out"), 0700U) << "so that nobody else reaches what everybody may write";
}

/// Permissions and time, in seconds, of what a path names.
std::string FactsOf(const std::string& path) {
    struct stat state {};
    EXPECT_EQ(lstat(path.c_str(), &state), 0) << path;
    return std::to_string(state.st_mode & 07777U) + " " + std::to_string(state.st_mtim.tv_sec);
}

TEST(TarUncompress, keepsPermissionsAndTimesFromPacking) {
    const TemporaryFolder folder;
    fs::create_directories("tree/a/b");
    fs::create_directories("tree/c");
    const std::map<std::string, mode_t> modes{{"a/private", 0600}, {"a/b/run", 0755},  {"a/read", 0444},
                                              {"c/all", 0666},     {"c/secret", 0400}, {"top", 0640},
                                              {"a/b", 0711},       {"a", 0700},        {"c", 0777}};
    for (const auto& [name, mode] : modes)
        if (!fs::is_directory("tree/" + name))
            WriteFile("tree/" + name, name);
    std::map<std::string, std::string> facts;
    time_t time = 1'000'000'000;
    for (const char* const name :
         {"a/private", "a/b/run", "a/read", "c/all", "c/secret", "top", "a/b", "a", "c"}) {
        const std::string path = "tree/" + std::string(name);
        ASSERT_EQ(chmod(path.c_str(), modes.at(name)), 0);
        const timespec times[2] = {{time, 0}, {time, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        time += 1000;
        facts[name] = FactsOf(path);
    }
    TarCompress("tree", "in.tar", bAlloc_Application());
    umask(077);
    EXPECT_EQ(Unpacking("in.tar", "out"), "unpacked");
    umask(022);
    for (const auto& [name, expected] : facts)
        EXPECT_EQ(FactsOf("out/" + name), expected) << name;
}

TEST(TarUncompress, setsAFoldersTimeAfterItsContent) {
    const TemporaryFolder folder;
    const std::string early = TarFolder("a");
    ASSERT_EQ(UnpackingOf(early + TarFolder("b") + TarFile("b/x", "x") + TarFile("a/y", "y") +
                          TarFolder("a/c") + TarFile("b/z", "z") + TarEnd()),
              "unpacked");
    for (const char* const name : {"out/a", "out/b", "out/a/c"})
        EXPECT_EQ(FactsOf(name), std::to_string(0755) + " 1700000000") << name;
}

LeftOut Reported(const std::string& archive) {
    WriteFile("in.tar", archive);
    return TarUncompressReporting("in.tar", "out", bAlloc_Application());
}

TEST(TarUncompress, copiesAHardLinkToAnEntryOfTheArchive) {
    const TemporaryFolder folder;
    TarBlockEntry first;
    first.name = "a/first";
    first.content = "content";
    first.mode = 0640;
    const LeftOut leftOut = Reported(TarFolder("a") + TarBlocks(first) + TarLink("a/second", '1', "a/first") +
                                     TarLink("third", '1', "./a//second") + TarEnd());
    EXPECT_EQ(leftOut, LeftOut());
    EXPECT_EQ(FolderTree("out"),
              (Tree{{"a/", ""}, {"a/first", "content"}, {"a/second", "content"}, {"third", "content"}}));
    EXPECT_EQ(FactsOf("out/third"), FactsOf("out/a/first"));
    EXPECT_EQ(fs::hard_link_count("out/third"), 1U) << "changing one must not change the other";
}

TEST(TarUncompress, readsHardLinksOfOtherTools) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    WriteFile("tree/a", "content");
    fs::create_hard_link("tree/a", "tree/b");
    for (const char* const tool : {"tar -cf in.tar -C tree a b", "bsdtar -cf in.tar -C tree a b",
                                   "bsdtar -cf in.tar --format=pax -C tree a b"}) {
        ASSERT_EQ(RunTool(tool), "");
        EXPECT_EQ(Unpacking("in.tar", "out"), "unpacked");
        EXPECT_EQ(FolderTree("out"), (Tree{{"a", "content"}, {"b", "content"}})) << tool;
    }
}

TEST(TarUncompress, logsNumberAndNamesOfOmittedEntries) {
    const TemporaryFolder folder;
    WriteFile("outside", "secret");
    LogCapture log;
    const LeftOut leftOut =
        Reported(TarFile("a", "x") + TarLink("up", '1', "../outside") + TarLink("link", '2', "a") +
                 TarLink("fifo", '6', "") + TarLink("missing", '1', "b") + TarLink("through", '1', "link") +
                 TarFolder("folder") + TarLink("toFolder", '1', "folder") + TarEnd());
    EXPECT_EQ(leftOut.count, 6);
    EXPECT_THAT(leftOut.names,
                testing::UnorderedElementsAre("up", "link", "fifo", "missing", "through", "toFolder"));
    EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}, {"folder/", ""}}));
    EXPECT_THAT(log.Lines(), testing::Contains("INFO: Links and special files left out of in.tar: 6 (up, "
                                               "missing, through, toFolder, link, fifo)"));
}

TEST(TarUncompress, namesAtMostAHundredOmittedEntries) {
    const TemporaryFolder folder;
    std::string links;
    for (int i = 0; i < 150; ++i)
        links += TarLink("l" + std::to_string(i), '2', "a");
    LogCapture log;
    const LeftOut leftOut = Reported(links + TarEnd());
    EXPECT_EQ(leftOut.count, 150);
    EXPECT_EQ(leftOut.names.size(), 100U);
    const std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_THAT(lines[0], testing::HasSubstr(": 150 (l0, l1, "));
    EXPECT_THAT(lines[0], testing::EndsWith(", l99, ...)"));
}

TEST(TarUncompress, failsForAMissingArchive) {
    const TemporaryFolder folder;
    fs::create_directories("out");
    WriteFile("out/kept", "x");
    EXPECT_EQ(Unpacking("missing.tar", "out"), Failure(bERROR_NOT_FOUND, "missing.tar doesn't exist."));
    EXPECT_EQ(Unpacking("out", "out"), Failure(bERROR_NOT_FOUND, "out doesn't exist."));
    EXPECT_EQ(FileContent("out/kept"), "x");
}

TEST(TarUncompress, failsForAnUnreadableArchive) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    WriteFile("in.tar", TarEnd());
    ASSERT_EQ(chmod("in.tar", 0), 0);
    EXPECT_EQ(Unpacking("in.tar", "out"), Failure(bERROR_FILE, "Failed to construct a bFile object."));
    EXPECT_FALSE(fs::exists("out"));
}

TEST(TarUncompress, namesTheStepAtWhichMemoryRanOut) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarFile("a", "x") + TarEnd());
    std::set<std::string> failures;
    std::string result;
    for (int failing = 1; result != "unpacked"; ++failing) {
        ASSERT_LT(failing, 100);
        FailingAllocator allocator(failing);
        result = Unpacking("in.tar", "out", &allocator);
        EXPECT_EQ(allocator.Living(), 0);
        failures.insert(result);
    }
    EXPECT_THAT(failures, IsSupersetOf({Failure(bERROR_MEMORY, "Failed to construct a bFile object."),
                                        Failure(bERROR_MEMORY, "Failed to construct a bTar object.")}));
}

TEST(TarUncompress, reportsATargetThatCannotBeDeleted) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    fs::create_directories("out/locked");
    WriteFile("out/locked/file", "x");
    ASSERT_EQ(chmod("out/locked", 0500), 0);
    EXPECT_EQ(UnpackingOf(TarEnd()), Failure(bERROR_FILE, "Failed to delete the existing directory - out"));
    ASSERT_EQ(chmod("out/locked", 0700), 0);
}

TEST(TarUncompress, reportsATargetThatCannotBeCreated) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarEnd());
    EXPECT_EQ(Unpacking("in.tar", "missing/out"),
              Failure(bERROR_FILE, "Failed to create the directory - missing/out"));
    WriteFile("out", "a file");
    EXPECT_EQ(Unpacking("in.tar", "out"), Failure(bERROR_FILE, "Failed to create the directory - out"));
    EXPECT_EQ(FileContent("out"), "a file");
}

TEST(TarUncompress, replacesALinkTargetNotItsDestination) {
    const TemporaryFolder folder;
    fs::create_directory("elsewhere");
    WriteFile("elsewhere/kept", "x");
    fs::create_directory_symlink("elsewhere", "out");
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarEnd()), "unpacked");
    EXPECT_FALSE(fs::is_symlink("out"));
    EXPECT_EQ(FolderTree("elsewhere"), (Tree{{"kept", "x"}}));
}

TEST(TarUncompress, reportsAFileInPlaceOfADirectoryAndViceVersa) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile("a", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to open file - out/a"));
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFolder("a") + TarEnd()),
              Failure(bERROR_FILE, "Failed to create the directory - out/a"));
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFile("a/b", "x") + TarEnd()),
              Failure(bERROR_FILE, "Failed to create the directory - out/a/b"));
}

TEST(TarUncompress, leavesNoPartialFileOnAFullDisk) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarFile("a", "x") + TarFile("large", std::string(300'000, 'l')) + TarEnd());
    const FileSizeLimit limit(200'000);
    EXPECT_EQ(Unpacking("in.tar", "out"), Failure(bERROR_FILE, "Failed to write out/large"));
    EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}}));
}

TEST(TarUncompress, takesLittleMemoryForALargeFile) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    WriteFile("tree/large", "");
    fs::resize_file("tree/large", 64U << 20);
    ASSERT_EQ(RunTool("tar -cf in.tar -C tree large"), "");
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(Unpacking("in.tar", "out"), "unpacked");
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024) << "kilobytes";
    EXPECT_EQ(fs::file_size("out/large"), 64U << 20);
}

} // namespace
