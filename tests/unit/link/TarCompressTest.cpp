#include "ArchiveOutcome.h"

#include "FailingAllocator.h"
#include "FileSizeLimit.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "RunTool.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsSupersetOf;

std::string Packing(const std::string& source, const std::string& archive,
                    bAlloc allocator = bAlloc_Application()) {
    return OutcomeOf([&] { TarCompress(source, archive, allocator); }, "packed");
}

std::string Failure(bStatus status, const std::string& message) {
    return std::to_string(status) + " " + message + " in TarCompress";
}

void MakeTree() {
    fs::create_directories("tree/a/b");
    fs::create_directories("tree/empty");
    WriteFile("tree/top.trk", "top");
    WriteFile("tree/zero", "");
    WriteFile("tree/a/b/c.trk", std::string(100'000, 'c'));
    WriteFile("tree/a/größe.trk", "ä");
}

std::string NamesIn(const std::string& archive) {
    return RunTool("tar --quoting-style=literal -tf '" + archive + "'");
}

TEST(TarCompress, packsADirectoryThenItsFilesThenItsDirectories) {
    const TemporaryFolder folder;
    MakeTree();
    EXPECT_EQ(Packing("./tree", "out.tar"), "packed");
    EXPECT_EQ(NamesIn("out.tar"), "top.trk\nzero\na/\na/größe.trk\na/b/\na/b/c.trk\nempty/\n");
}

TEST(TarCompress, writesNoEntriesForAnEmptyDirectory) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    EXPECT_EQ(Packing("tree", "out.tar"), "packed");
    EXPECT_EQ(NamesIn("out.tar"), "");
    EXPECT_EQ(FileContent("out.tar"), std::string(1024, '\0'));
}

TEST(TarCompress, givesTheSameArchiveForTheSameTree) {
    const TemporaryFolder folder;
    MakeTree();
    EXPECT_EQ(Packing("tree", "one.tar"), "packed");
    EXPECT_EQ(Packing("tree", "two.tar"), "packed");
    EXPECT_EQ(FileContent("one.tar"), FileContent("two.tar"));
}

TEST(TarCompress, leavesOutLinksAndSpecialFiles) {
    const TemporaryFolder folder;
    MakeTree();
    fs::create_directory("outside");
    WriteFile("outside/secret", "s");
    fs::create_directory_symlink("../outside", "tree/linkToFolder");
    fs::create_symlink("../outside/secret", "tree/linkToFile");
    ASSERT_EQ(mkfifo("tree/fifo", 0600), 0);
    EXPECT_EQ(Packing("tree", "out.tar"), "packed");
    EXPECT_EQ(NamesIn("out.tar"), "top.trk\nzero\na/\na/größe.trk\na/b/\na/b/c.trk\nempty/\n");
}

TEST(TarCompress, isReadByGnuTarAndBsdtar) {
    const TemporaryFolder folder;
    MakeTree();
    const std::string longPart(120, 'l');
    fs::create_directories("tree/" + longPart + "/" + longPart);
    WriteFile("tree/" + longPart + "/" + longPart + "/deep.trk", "deep");
    WriteFile("tree/line\nfeed", "x");
    ASSERT_EQ(Packing("tree", "out.tar"), "packed");
    fs::create_directory("gnu");
    fs::create_directory("bsd");
    EXPECT_EQ(RunTool("tar -xf out.tar -C gnu"), "");
    EXPECT_EQ(RunTool("bsdtar -xf out.tar -C bsd"), "");
    EXPECT_EQ(FolderTree("gnu"), FolderTree("tree"));
    EXPECT_EQ(FolderTree("bsd"), FolderTree("tree"));
}

TEST(TarCompress, refusesWhatIsNotADirectory) {
    const TemporaryFolder folder;
    WriteFile("file", "x");
    WriteFile("out.tar", "old");
    EXPECT_EQ(Packing("missing", "out.tar"), Failure(bERROR_FILE, "missing is not a directory."));
    EXPECT_EQ(Packing("file", "out.tar"), Failure(bERROR_FILE, "file is not a directory."));
    EXPECT_EQ(FileContent("out.tar"), "old");
}

TEST(TarCompress, reportsAnArchiveThatCannotBeOpened) {
    const TemporaryFolder folder;
    MakeTree();
    EXPECT_EQ(Packing("tree", "missing/out.tar"),
              Failure(bERROR_FILE, "Failed to construct missing/out.tar"));
    EXPECT_EQ(Packing("tree", "tree/a"), Failure(bERROR_FILE, "Failed to construct tree/a"));
}

TEST(TarCompress, namesTheStepAtWhichMemoryRanOut) {
    const TemporaryFolder folder;
    MakeTree();
    WriteFile("tree/" + std::string(100, 'n'), "a name that needs its own memory");
    fs::create_directory("tree/" + std::string(100, 'd'));
    WriteFile("out.tar", "old");
    std::set<std::string> failures;
    std::string result;
    for (int failing = 1; result != "packed"; ++failing) {
        ASSERT_LT(failing, 1000);
        FailingAllocator allocator(failing);
        result = Packing("tree", "out.tar", &allocator);
        EXPECT_EQ(allocator.Living(), 0);
        failures.insert(result);
        EXPECT_EQ(FileContent("out.tar") == "old", result != "packed");
    }
    EXPECT_THAT(failures,
                IsSupersetOf({Failure(bERROR_MEMORY, "Failed to construct out.tar"),
                              Failure(bERROR_MEMORY, "Failed to allocate memory."),
                              Failure(bERROR_MEMORY, "Failed to construct a bTar object."),
                              Failure(bERROR_MEMORY, "Failed to construct a bArrayList(bString) object."),
                              Failure(bERROR_MEMORY, "Failed to list files in tree"),
                              Failure(bERROR_MEMORY, "Failed to write tree/top.trk"),
                              Failure(bERROR_MEMORY, "Failed to list directories in tree")}));
}

TEST(TarCompress, refusesATooLongDirectoryName) {
    const TemporaryFolder folder;
    const std::string part(255, 'd');
    fs::create_directories("tree/" + part + "/" + part);
    EXPECT_EQ(Packing("tree", "out.tar"), "packed");
    fs::current_path("tree/" + part + "/" + part);
    fs::create_directory("x");
    fs::current_path("../../..");
    EXPECT_EQ(Packing("tree", "out.tar"), Failure(bERROR_TOO_LONG, "Failed to create the replay directory."));
}

TEST(TarCompress, refusesATreeTooDeepToUnpack) {
    const TemporaryFolder folder;
    std::string path = "tree";
    for (int i = 0; i < 65; ++i)
        path += "/d";
    fs::create_directories(path);
    EXPECT_EQ(Packing("tree", "out.tar"),
              Failure(bERROR_PARAMETER, "Failed to create the replay directory."));
}

TEST(TarCompress, refusesAFileNameThatWouldNotBeUnpacked) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    WriteFile("tree/..\\out", "x");
    EXPECT_EQ(Packing("tree", "out.tar"), Failure(bERROR_PARAMETER, "Failed to write tree/..\\out"));
    EXPECT_FALSE(fs::exists("out.tar"));
}

TEST(TarCompress, namesTheDirectoryThatCannotBeListed) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    MakeTree();
    ASSERT_EQ(chmod("tree/a/b", 0), 0);
    EXPECT_EQ(Packing("tree", "out.tar"), Failure(bERROR_FILE, "Failed to list files in tree/a/b"));
    ASSERT_EQ(chmod("tree/a/b", 0700), 0);
}

TEST(TarCompress, keepsTheOldArchiveWhenAFileCannotBeRead) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    MakeTree();
    WriteFile("out.tar", "old");
    ASSERT_EQ(chmod("tree/a/b/c.trk", 0), 0);
    EXPECT_EQ(Packing("tree", "out.tar"), Failure(bERROR_FILE, "Failed to write tree/a/b/c.trk"));
    EXPECT_EQ(FileContent("out.tar"), "old");
    EXPECT_EQ(FolderTree(".").size(), 9U); // the tree and the old archive: nothing else is left over
}

TEST(TarCompress, keepsTheOldArchiveWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    MakeTree();
    WriteFile("out.tar", "old");
    constexpr rlim_t kArchiveSize = 107'008;
    constexpr rlim_t kLastBuffer = 1536; // the entry of "empty" and the end mark
    std::set<std::string> failures;
    for (const rlim_t maxSize :
         {rlim_t{0}, rlim_t{512}, rlim_t{60'000}, kArchiveSize - kLastBuffer - 1, kArchiveSize - kLastBuffer,
          kArchiveSize - kLastBuffer + 1, kArchiveSize - 512, kArchiveSize - 1}) {
        const FileSizeLimit limit(maxSize);
        failures.insert(Packing("tree", "out.tar"));
        EXPECT_EQ(FileContent("out.tar"), "old") << maxSize;
    }
    EXPECT_THAT(failures, testing::ElementsAre(Failure(bERROR_FILE, "Failed to write out.tar"),
                                               Failure(bERROR_FILE, "Failed to write tree/a/b/c.trk")));
    const FileSizeLimit enough(kArchiveSize);
    EXPECT_EQ(Packing("tree", "out.tar"), "packed");
    EXPECT_EQ(fs::file_size("out.tar"), kArchiveSize);
}

TEST(TarCompress, takesLittleMemoryForALargeFile) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    WriteFile("tree/large", "");
    fs::resize_file("tree/large", 64U << 20);
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(Packing("tree", "out.tar"), "packed");
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024) << "kilobytes";
}

TEST(TarCompress, logsWhyItFailed) {
    const TemporaryFolder folder;
    fs::create_directory("tree");
    WriteFile("tree/large", std::string(300'000, 'l'));
    LogCapture log;
    {
        const FileSizeLimit limit(100'000);
        EXPECT_THROW(TarCompress("tree", "out.tar", bAlloc_Application()), Ve::Exception);
    }
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Failed to write tree/large - File too large"));
    EXPECT_THROW(TarCompress("tree", "missing/out.tar", bAlloc_Application()), Ve::Exception);
    EXPECT_THAT(log.Lines(),
                ElementsAre("INFO: Failed to construct missing/out.tar - No such file or directory"));
}

} // namespace
