#include "basalt/bFile.h"

#include "FailingAllocator.h"
#include "FileSizeLimit.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <set>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

// The linker replaces the system's function by this one (see --wrap in CMakeLists.txt).
ssize_t ShortRead(int descriptor, void* data, std::size_t size) __asm__("__wrap_read");
ssize_t RealRead(int descriptor, void* data, std::size_t size) __asm__("__real_read");

namespace {

/// The maximum size of a read, of which every other one is interrupted; 0 for normal reads.
std::size_t maxBytesRead = 0;
int reads = 0;

} // namespace

ssize_t ShortRead(int descriptor, void* data, std::size_t size) {
    if (maxBytesRead == 0)
        return RealRead(descriptor, data, size);
    if (++reads % 2 == 0) {
        errno = EINTR;
        return -1;
    }
    return RealRead(descriptor, data, std::min(size, maxBytesRead));
}

namespace {

bOwned<bFile> Open(const char* path, int mode, bStatus expected = bOK) {
    bFile* file = nullptr;
    EXPECT_EQ(bFile_Construct(&file, path, mode, bAlloc_Application()), expected) << path;
    EXPECT_EQ(file != nullptr, expected == bOK);
    return bOwned<bFile>(file);
}

TEST(File, existsOnlyWhenItIsARegularFile) {
    const TemporaryFolder folder;
    WriteFile("file", "abc");
    std::filesystem::create_directory("folder");
    EXPECT_NE(bFile_Exists("file"), 0);
    EXPECT_EQ(bFile_Exists("folder"), 0);
    EXPECT_EQ(bFile_Exists("missing"), 0);
    EXPECT_EQ(bFile_Size("file"), 3);
    EXPECT_EQ(bFile_Size("folder"), -1);
    EXPECT_EQ(bFile_Size("missing"), -1);
}

TEST(File, isDeleted) {
    const TemporaryFolder folder;
    WriteFile("file", "abc");
    std::filesystem::create_directory("folder");
    EXPECT_EQ(bFile_Delete("file"), bOK);
    EXPECT_FALSE(std::filesystem::exists("file"));
    EXPECT_EQ(bFile_Delete("file"), bERROR_NOT_FOUND);
    EXPECT_EQ(bFile_Delete("folder"), bERROR_NOT_FOUND);
    EXPECT_TRUE(std::filesystem::exists("folder"));
}

TEST(File, isReadToItsEnd) {
    const TemporaryFolder folder;
    WriteFile("file", "abcdefgh");
    const auto file = Open("file", bFile_READ);
    std::array<char, 5> data{};
    std::size_t count = 0;
    EXPECT_EQ(file->Read(data.data(), data.size(), &count), bOK);
    EXPECT_EQ(std::string(data.data(), count), "abcde");
    EXPECT_EQ(file->Skip(1), 1);
    EXPECT_EQ(file->Read(data.data(), data.size(), &count), bOK);
    EXPECT_EQ(std::string(data.data(), count), "gh");
    EXPECT_EQ(file->Read(data.data(), data.size(), &count), bOK);
    EXPECT_EQ(count, 0U);
}

TEST(File, isReadCompletelyInPartialReads) {
    const TemporaryFolder folder;
    WriteFile("file", "abcdefghijklmnopqrstuvwxyz");
    const auto file = Open("file", bFile_READ);
    std::string data(20, '?');
    std::size_t count = 0;
    maxBytesRead = 3;
    const bStatus status = file->Read(data.data(), 8, &count);
    maxBytesRead = 0;
    EXPECT_EQ(status, bOK);
    EXPECT_EQ(count, 8U);
    EXPECT_EQ(data, "abcdefgh????????????");
}

TEST(File, skipsNotBackwardsWhenItHasBecomeShorter) {
    const TemporaryFolder folder;
    WriteFile("file", "abcdefgh");
    const auto file = Open("file", bFile_READ);
    EXPECT_EQ(file->Skip(5), 5);
    std::filesystem::resize_file("file", 2);
    EXPECT_EQ(file->Skip(1), 0);
    WriteFile("file", "abcdefgh");
    char byte = '?';
    std::size_t count = 0;
    EXPECT_EQ(file->Read(&byte, 1, &count), bOK);
    EXPECT_EQ(byte, 'f') << "the place is where it was";
}

TEST(File, isNotSkippedBeyondItsEnd) {
    const TemporaryFolder folder;
    WriteFile("file", "abcdefgh");
    const auto file = Open("file", bFile_READ);
    EXPECT_EQ(file->Skip(3), 3);
    EXPECT_EQ(file->Skip(1'000'000'000'000), 5);
    EXPECT_EQ(file->Skip(1), 0);
    EXPECT_EQ(file->Skip(-1), -1);
}

TEST(File, opensOnlyRegularFilesForReading) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    Open("missing", bFile_READ, bERROR_NOT_FOUND);
    Open("folder", bFile_READ, bERROR_FILE);
    Open("fifo", bFile_READ, bERROR_FILE);
    Open("/dev/zero", bFile_READ, bERROR_FILE);
    Open("file", 3, bERROR_PARAMETER);
}

TEST(File, isNotOpenedAgainstItsPermissions) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    WriteFile("file", "abc");
    ASSERT_EQ(chmod("file", 0), 0);
    Open("file", bFile_READ, bERROR_FILE);
    Open("file", bFile_WRITE, bERROR_FILE);
}

TEST(File, keepsItsOldContentUntilItIsCommitted) {
    const TemporaryFolder folder;
    WriteFile("file", "old");
    {
        const auto file = Open("file", bFile_WRITE);
        EXPECT_EQ(bFile_SetWriteBuffer(file.get(), 65536), bOK);
        EXPECT_EQ(file->Write("new", 3), bOK);
        EXPECT_EQ(FileContent("file"), "old");
    }
    EXPECT_EQ(FileContent("file"), "old");
    const auto file = Open("file", bFile_WRITE);
    EXPECT_EQ(file->Write("new", 3), bOK);
    EXPECT_EQ(bFile_Commit(file.get()), bOK);
    EXPECT_EQ(FileContent("file"), "new");
    EXPECT_EQ(file->Write("more", 4), bERROR_FILE);
    EXPECT_EQ(bFile_Commit(file.get()), bERROR_FILE);
}

TEST(File, keepsTheOrderOfSmallAndLargeWritesThroughItsBuffer) {
    const TemporaryFolder folder;
    std::string expected;
    const auto file = Open("file", bFile_WRITE);
    ASSERT_EQ(bFile_SetWriteBuffer(file.get(), 1000), bOK);
    for (const std::size_t size : {1U, 999U, 1U, 1000U, 500U, 501U, 5000U, 0U, 7U}) {
        const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
        EXPECT_EQ(file->Write(piece.data(), piece.size()), bOK);
        expected += piece;
    }
    ASSERT_EQ(bFile_Commit(file.get()), bOK);
    EXPECT_EQ(FileContent("file"), expected);
}

TEST(File, keepsTheOldContentOnAFullDisk) {
    const TemporaryFolder folder;
    WriteFile("file", "old");
    const FileSizeLimit limit(100'000);
    const auto file = Open("file", bFile_WRITE);
    ASSERT_EQ(bFile_SetWriteBuffer(file.get(), 65536), bOK);
    const std::string data(60'000, 'x');
    EXPECT_EQ(file->Write(data.data(), data.size()), bOK);
    EXPECT_EQ(file->Write(data.data(), data.size()), bOK);
    EXPECT_EQ(bFile_Commit(file.get()), bERROR_FILE);
    EXPECT_EQ(FileContent("file"), "old");
}

TEST(File, reportsAFullDiskWhileItIsWritten) {
    const TemporaryFolder folder;
    const FileSizeLimit limit(100'000);
    const auto file = Open("file", bFile_WRITE);
    const std::string data(200'000, 'x');
    EXPECT_EQ(file->Write(data.data(), data.size()), bERROR_FILE);
    EXPECT_EQ(file->Write("x", 1), bERROR_FILE);
}

TEST(File, reportsThatMemoryIsOut) {
    const TemporaryFolder folder;
    FailingAllocator none(1);
    bFile* file = nullptr;
    EXPECT_EQ(bFile_Construct(&file, "file", bFile_WRITE, &none), bERROR_MEMORY);
    EXPECT_EQ(file, nullptr);
    FailingAllocator one(2);
    ASSERT_EQ(bFile_Construct(&file, "file", bFile_WRITE, &one), bOK);
    EXPECT_EQ(bFile_SetWriteBuffer(file, 65536), bERROR_MEMORY);
    EXPECT_EQ(bFile_SetWriteBuffer(file, SIZE_MAX), bERROR_MEMORY);
    EXPECT_EQ(xbObject_DestroyImpl(file), bOK);
    EXPECT_EQ(one.Living(), 0);
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(File, allocatesNoWriteBufferForReading) {
    const TemporaryFolder folder;
    WriteFile("file", "abc");
    const auto file = Open("file", bFile_READ);
    EXPECT_EQ(bFile_SetWriteBuffer(file.get(), 10), bERROR_PARAMETER);
    EXPECT_EQ(file->Write("x", 1), bERROR_FILE);
    EXPECT_EQ(bFile_Commit(file.get()), bERROR_FILE);
    EXPECT_EQ(FileContent("file"), "abc");
}

TEST(File, readsFromASequentialSource) {
    int calls = 0;
    const auto source = [&calls](char* buffer, std::size_t capacity, std::string_view* block) {
        EXPECT_EQ(capacity, 4U);
        buffer[0] = static_cast<char>('a' + calls);
        *block = {buffer, calls < 2 ? 1U : 0U};
        return calls++ < 3 ? bOK : bERROR_FORMAT;
    };
    bFile* file = nullptr;
    EXPECT_EQ(bFile_ConstructOver(&file, nullptr, 2, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(bFile_ConstructOver(&file, source, -1, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(file, nullptr);
    ASSERT_EQ(bFile_ConstructOver(&file, source, 2, bAlloc_Application()), bOK);
    const bOwned<bFile> owned(file);
    FileFacts facts;
    EXPECT_EQ(file->Ask(&facts), bOK);
    EXPECT_EQ(facts, (FileFacts{.size = 2}));
    EXPECT_EQ(file->Skip(1), 0) << "the caller must read it instead";
    std::array<char, 4> buffer{};
    std::string_view block;
    for (const char* const expected : {"a", "b", ""}) {
        EXPECT_EQ(file->ReadBlock(buffer.data(), buffer.size(), &block), bOK);
        EXPECT_EQ(block, expected);
    }
    EXPECT_EQ(file->ReadBlock(buffer.data(), buffer.size(), &block), bERROR_FORMAT);
    std::size_t count = 1;
    EXPECT_EQ(file->Read(buffer.data(), buffer.size(), &count), bERROR_FILE);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(bFile_Commit(file), bERROR_FILE);
}

TEST(Status, everyStatusHasADistinctName) {
    std::set<std::string> names;
    const bStatus statuses[] = {bOK,
                                bERROR_MEMORY,
                                bERROR_PARAMETER,
                                bERROR_FORMAT,
                                bERROR_END,
                                bERROR_TOO_LONG,
                                bERROR_LIMIT,
                                bERROR_TRACK,
                                bERROR_NOT_CONNECTED,
                                bERROR_TIMEOUT,
                                bERROR_CONNECTION,
                                bERROR_REFUSED,
                                bERROR_FILE,
                                bERROR_REQUEST,
                                bERROR_NOT_FOUND};
    for (const bStatus status : statuses) {
        names.insert(bStatus_Name(status));
        EXPECT_EQ(std::string(bStatus_Name(status)).find("STATUS"), std::string::npos) << status;
    }
    EXPECT_EQ(names.size(), std::size(statuses));
    EXPECT_STREQ(bStatus_Name(bERROR_TIMEOUT), "ERROR_TIMEOUT");
    EXPECT_STREQ(bStatus_Name(bERROR_CONNECTION), "ERROR_CONNECTION");
    EXPECT_STREQ(bStatus_Name(bERROR_REFUSED), "ERROR_REFUSED");
    EXPECT_STREQ(bStatus_Name(12345), "STATUS 12345");
    EXPECT_STREQ(bStatus_Name(0), "STATUS 0");
}

TEST(Status, nameStaysValidWhileOtherThreadsAsk) {
    const char* const name = bStatus_Name(12345);
    std::thread([] { EXPECT_STREQ(bStatus_Name(777), "STATUS 777"); }).join();
    EXPECT_STREQ(name, "STATUS 12345");
}

} // namespace
