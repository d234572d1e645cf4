#include "ArchiveOutcome.h"

#include "FailingAllocator.h"
#include "FileSizeLimit.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TarBlocks.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using Tree = std::map<std::string, std::string>;

TEST(TarUncompress, refusesNamesOutsideTheTarget) {
    const TemporaryFolder folder;
    fs::create_directory("inside");
    fs::current_path("inside");
    for (const char* const name :
         {"../evil", "a/../../evil", "/evil", "//evil", "..\\evil", "a\\..\\..\\evil", "\\evil", "C:evil",
          "C:\\evil", "c:/evil", "./../evil", "a/.."}) {
        const std::string path = std::string("out/") + name;
        EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile(name, "x") + TarEnd()),
                  UnpackingFailure(bERROR_FILE, "Failed to open file - " + path));
        EXPECT_EQ(FolderTree("out"), (Tree{{"a/", ""}})) << name;
        EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFolder(name) + TarEnd()),
                  UnpackingFailure(bERROR_FILE, "Failed to create the directory - " + path));
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
    EXPECT_EQ(UnpackingOf(TarFile("", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/"));
    EXPECT_EQ(UnpackingOf(TarFile(".", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/."));
    EXPECT_EQ(UnpackingOf(TarFile("a/.", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/a/."));
    const std::string name(256, 'n');
    EXPECT_EQ(UnpackingOf(TarGnuLongName(name) + TarFile("short", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/" + name));
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
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out/" + name));
}

TEST(TarUncompress, showsNoControlCharactersInItsMessages) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("../a\nb\x1b", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/../a?b?"));
}

TEST(TarUncompress, failsOnATooLongName) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFile("first", "1") + TarPax(PaxRecord("path", std::string(600, 'n'))) +
                          TarFile("short", "x") + TarFile("last", "2") + TarEnd()),
              UnpackingFailure(bERROR_TOO_LONG, "Failed to read item - " + std::string(511, 'n')));
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
                  UnpackingFailure(bERROR_FORMAT, "Failed to read item - huge"));
        EXPECT_EQ(FolderTree("out"), (Tree{{"first", "1"}}));
    }
    EXPECT_EQ(UnpackingOf(TarPax(PaxRecord("GNU.sparse.name", "hole") +
                                 PaxRecord("GNU.sparse.size", "4398046511104") +
                                 PaxRecord("GNU.sparse.map", "4398046511103,1")) +
                          TarFile("short", "x") + TarEnd()),
              UnpackingFailure(bERROR_FORMAT, "Failed to read item - hole"));
}

TEST(TarUncompress, unpacksADamagedArchiveUpToTheDamageAndLogsIt) {
    const TemporaryFolder folder;
    LogCapture log;
    TarBlockEntry wrong;
    wrong.name = "b";
    wrong.wrongChecksum = true;
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarBlocks(wrong) + TarFile("c", "x") + TarEnd()), "unpacked");
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

TEST(TarUncompress, logsWhyItFailed) {
    const TemporaryFolder folder;
    LogCapture log;
    WriteFile("in.tar", TarFile("large", std::string(300'000, 'l')) + TarEnd());
    {
        const FileSizeLimit limit(200'000);
        EXPECT_NE(UnpackOutcome("in.tar", "out"), "unpacked");
    }
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Failed to write out/large - File too large"));
    EXPECT_NE(UnpackingOf(TarFile("../evil", "x") + TarEnd()), "unpacked");
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to open file - out/../evil - the name leads outside, is no "
                            "file's, or nests too deep"));
    TarBlockEntry large;
    large.name = "large";
    large.size = 100'000;
    EXPECT_NE(UnpackingOf(TarBlocks(large) + TarEnd()), "unpacked");
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to read item - large - an entry claims more bytes than the "
                            "archive can hold at byte 512"));
    EXPECT_NE(UnpackOutcome("in.tar", "missing/out"), "unpacked");
    EXPECT_THAT(
        log.Lines(),
        ElementsAre("INFO: Failed to create the directory - missing/out - No such file or directory"));
}

TEST(TarUncompress, strictlyRefusesTruncatedOrDamagedArchives) {
    const TemporaryFolder folder;
    TarBlockEntry wrong;
    wrong.name = "b";
    wrong.wrongChecksum = true;
    const std::string damaged = "-3 The archive is damaged - strict.tar";
    EXPECT_EQ(StrictStatus(TarFile("a", "x") + TarBlocks(wrong) + TarEnd()), damaged);
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
    const Tree complete = FolderTree("out");
    int failures = 0;
    for (std::size_t length = 0; length < archive.size(); length += 512) {
        const std::string result = UnpackingOf(archive.substr(0, length));
        if (result != "unpacked") {
            EXPECT_THAT(result, testing::StartsWith("-3 Failed to read item - ")) << length;
            ++failures;
        }
        for (const auto& [name, content] : FolderTree("out"))
            EXPECT_EQ(content, complete.at(name)) << length;
        EXPECT_NE(StrictStatus(archive.substr(0, length)), "unpacked") << length;
    }
    EXPECT_EQ(failures, 10 + 1 + 1); // within the data of the three files, including their last block
}

TEST(TarUncompress, failsForAMissingArchive) {
    const TemporaryFolder folder;
    fs::create_directories("out");
    WriteFile("out/kept", "x");
    EXPECT_EQ(UnpackOutcome("missing.tar", "out"),
              UnpackingFailure(bERROR_NOT_FOUND, "missing.tar doesn't exist."));
    EXPECT_EQ(UnpackOutcome("out", "out"), UnpackingFailure(bERROR_NOT_FOUND, "out doesn't exist."));
    EXPECT_EQ(FileContent("out/kept"), "x");
}

TEST(TarUncompress, failsForAnUnreadableArchive) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    WriteFile("in.tar", TarEnd());
    ASSERT_EQ(chmod("in.tar", 0), 0);
    EXPECT_EQ(UnpackOutcome("in.tar", "out"),
              UnpackingFailure(bERROR_FILE, "Failed to construct a bFile object."));
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
        result = UnpackOutcome("in.tar", "out", &allocator);
        EXPECT_EQ(allocator.Living(), 0);
        failures.insert(result);
    }
    EXPECT_THAT(failures,
                IsSupersetOf({UnpackingFailure(bERROR_MEMORY, "Failed to construct a bFile object."),
                              UnpackingFailure(bERROR_MEMORY, "Failed to construct a bTar object.")}));
}

TEST(TarUncompress, reportsATargetThatCannotBeDeleted) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    fs::create_directories("out/locked");
    WriteFile("out/locked/file", "x");
    ASSERT_EQ(chmod("out/locked", 0500), 0);
    EXPECT_EQ(UnpackingOf(TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to delete the existing directory - out"));
    ASSERT_EQ(chmod("out/locked", 0700), 0);
}

TEST(TarUncompress, reportsATargetThatCannotBeCreated) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarEnd());
    EXPECT_EQ(UnpackOutcome("in.tar", "missing/out"),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - missing/out"));
    WriteFile("out", "a file");
    EXPECT_EQ(UnpackOutcome("in.tar", "out"),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out"));
    EXPECT_EQ(FileContent("out"), "a file");
}

TEST(TarUncompress, reportsAFileInPlaceOfADirectoryAndViceVersa) {
    const TemporaryFolder folder;
    EXPECT_EQ(UnpackingOf(TarFolder("a") + TarFile("a", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to open file - out/a"));
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFolder("a") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out/a"));
    EXPECT_EQ(UnpackingOf(TarFile("a", "x") + TarFile("a/b", "x") + TarEnd()),
              UnpackingFailure(bERROR_FILE, "Failed to create the directory - out/a/b"));
}

TEST(TarUncompress, leavesNoPartialFileOnAFullDisk) {
    const TemporaryFolder folder;
    WriteFile("in.tar", TarFile("a", "x") + TarFile("large", std::string(300'000, 'l')) + TarEnd());
    const FileSizeLimit limit(200'000);
    EXPECT_EQ(UnpackOutcome("in.tar", "out"), UnpackingFailure(bERROR_FILE, "Failed to write out/large"));
    EXPECT_EQ(FolderTree("out"), (Tree{{"a", "x"}}));
}

} // namespace
