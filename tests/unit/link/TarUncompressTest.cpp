#include "ArchiveOutcome.h"
#include "link/FileUtils.h"

#include "FolderTree.h"
#include "LogCapture.h"
#include "RunTool.h"
#include "TarBlocks.h"
#include "cinder/bTar.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

// Gives ends and kinds that no archive of a test has: the linker replaces the platform's function by this one
// (see --wrap in CMakeLists.txt).
bStatus EndingRead(bTar*, char*, std::size_t, int*,
                   std::int64_t*) __asm__("__wrap__Z14bTar_BeginReadP4bTarPcmPiPl");
bStatus RealRead(bTar*, char*, std::size_t, int*,
                 std::int64_t*) __asm__("__real__Z14bTar_BeginReadP4bTarPcmPiPl");

namespace {

bStatus endAfterTheFirstEntry = bOK; ///< bOK: the archive's own end
int entriesRead = 0;
int kindOfDirectories = bTar_DIRECTORY;

} // namespace

bStatus EndingRead(bTar* tar, char* name, std::size_t capacity, int* kind, std::int64_t* size) {
    if (endAfterTheFirstEntry != bOK && entriesRead++ > 0)
        return endAfterTheFirstEntry;
    const bStatus status = RealRead(tar, name, capacity, kind, size);
    if (status == bOK && *kind == bTar_DIRECTORY)
        *kind = kindOfDirectories;
    return status;
}

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Tree = std::map<std::string, std::string>;

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
    EXPECT_EQ(UnpackOutcome("in.tar", "out/"),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/../evil"));
}

TEST(TarUncompress, createsAtMostOneMissingLevelForAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("a/file", "x") + TarEnd()), "unpacked");
    EXPECT_EQ(FileContent("out/a/file"), "x");
    EXPECT_EQ(UnpackingOf(TarFile("a/b/file", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out/a/b/file"));
    EXPECT_EQ(UnpackingOf(TarFolder("a/b") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out/a/b"));
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
        EXPECT_EQ(UnpackOutcome("in.tar", "out"), "unpacked") << tool;
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
    EXPECT_EQ(UnpackOutcome("in.tar", "out"), "unpacked");
    EXPECT_EQ(FolderTree("out"), FolderTree("tree"));
    EXPECT_EQ(StrictStatus(FileContent("in.tar")), "unpacked");
}

TEST(TarUncompress, unpacksARealBackupOnBothLevelsAndItPacksAgain) {
    const TemporaryFolder folder;
    const std::string workspace = "backup/workspaces/Workspace.osws";
    ASSERT_EQ(UnpackOutcome(TestData("station.osbak"), "backup"), "unpacked");
    ASSERT_EQ(UnpackOutcome(workspace, "osws"), "unpacked");
    const Tree tree = FolderTree("osws");
    EXPECT_EQ(tree.at("vdk/ContourPath/fault.trk"), FileContent(TestData("fault.trk")));
    const Tree before = FolderTree("backup");
    fs::create_directory("gnu");
    ASSERT_EQ(RunTool("tar -xf '" + TestData("station.osbak") + "' -C gnu"), "");
    EXPECT_EQ(before, FolderTree("gnu"));
    TarCompress("osws", workspace, bAlloc_Application());
    TarCompress("backup", "again.osbak", bAlloc_Application());
    ASSERT_EQ(UnpackOutcome("again.osbak", "backup"), "unpacked");
    EXPECT_EQ(FolderTree("backup").size(), before.size());
    ASSERT_EQ(UnpackOutcome(workspace, "osws"), "unpacked");
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

TEST(TarUncompress, restoresASmallSparseFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarPax(PaxRecord("GNU.sparse.name", "hole") + PaxRecord("GNU.sparse.size", "1200") +
                                 PaxRecord("GNU.sparse.map", "500,3,900,2")) +
                          TarFile("short", "abcde") + TarEnd()),
              "unpacked");
    EXPECT_EQ(FileContent("out/hole"),
              std::string(500, '\0') + "abc" + std::string(397, '\0') + "de" + std::string(298, '\0'));
}

TEST(TarUncompress, failsWhereTheArchiveCannotBeReadToItsEnd) {
    const TemporaryFolder folder;
    LogCapture log;
    for (const auto& [end, failure] :
         {std::pair{bERROR_FILE, UnpackingFailure(bERROR_FILE, "Failed to read item - in.tar")},
          {bERROR_LIMIT, UnpackingFailure(bERROR_LIMIT, "Failed to read item - in.tar")},
          {bERROR_MEMORY, UnpackingFailure(bERROR_MEMORY, "Failed to allocate memory.")},
          {bERROR_TOO_LONG, UnpackingFailure(bERROR_TOO_LONG, "Failed to read item - a")},
          {bERROR_FORMAT, std::string("unpacked")},
          {bERROR_END, std::string("unpacked")}}) {
        entriesRead = 0;
        endAfterTheFirstEntry = end;
        EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFile("b", "x") + TarEnd()), failure) << end;
        EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}})) << end;
    }
    endAfterTheFirstEntry = bOK;
    std::vector<std::string> errors = log.Lines();
    std::erase_if(errors, [](const std::string& line) { return line.starts_with("INFO"); });
    EXPECT_THAT(errors, ElementsAre("ERROR: (ERROR_FORMAT) The archive is damaged - in.tar"));
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
    EXPECT_EQ(mode("out"), 0700U) << "so that no other user reaches world-writable files";
}

/// Permissions and time, in seconds, of a path's file.
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
    EXPECT_EQ(UnpackOutcome("in.tar", "out"), "unpacked");
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
        EXPECT_EQ(UnpackOutcome("in.tar", "out"), "unpacked");
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

TEST(TarUncompress, replacesALinkTargetNotItsDestination) {
    const TemporaryFolder folder;
    fs::create_directory("elsewhere");
    WriteFile("elsewhere/kept", "x");
    fs::create_directory_symlink("elsewhere", "out");
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarEnd()), "unpacked");
    EXPECT_FALSE(fs::is_symlink("out"));
    EXPECT_EQ(FolderTree("elsewhere"), (Tree{{"kept", "x"}}));
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
    EXPECT_EQ(UnpackOutcome("in.tar", "out"), "unpacked");
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024) << "kilobytes";
    EXPECT_EQ(fs::file_size("out/large"), 64U << 20);
}

} // namespace
