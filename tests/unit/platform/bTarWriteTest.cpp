#include "TarFiles.h"

#include <filesystem>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The linker replaces the system's function by this one (see --wrap in CMakeLists.txt).
ssize_t WatchedRead(int descriptor, void* data, std::size_t size) __asm__("__wrap_read");
ssize_t RealRead(int descriptor, void* data, std::size_t size) __asm__("__real_read");

namespace {

/// Called once, after the next read of a file.
std::function<void()> onRead;

} // namespace

ssize_t WatchedRead(int descriptor, void* data, std::size_t size) {
    const ssize_t count = RealRead(descriptor, data, size);
    if (onRead)
        std::exchange(onRead, nullptr)();
    return count;
}

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Tar, writesOnlyItsEndMarkWithoutEntries) {
    const TemporaryFolder folder;
    EXPECT_EQ(Written([](bTar*) {}), TarEnd());
}

TEST(Tar, isWrittenAsUstarWithOwnerZero) {
    const TemporaryFolder folder;
    const std::string archive = Written([](bTar* tar) {
        EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_DIRECTORY, 0), bOK);
        EXPECT_EQ(Add(tar, "a/b.trk", "content"), bOK);
    });
    ASSERT_EQ(archive.size(), 512U * 5);
    EXPECT_EQ(archive.substr(257, 8), std::string("ustar\0"
                                                  "00",
                                                  8));
    EXPECT_EQ(archive[156], '5');
    EXPECT_EQ(archive.substr(0, 3), std::string("a/\0", 3));
    const std::string header = archive.substr(512, 512);
    EXPECT_EQ(header.substr(0, 8), std::string("a/b.trk\0", 8));
    EXPECT_EQ(header[156], '0');
    EXPECT_EQ(std::stoul(header.substr(108, 8), nullptr, 8), 0U);
    EXPECT_EQ(std::stoul(header.substr(116, 8), nullptr, 8), 0U);
    EXPECT_EQ(header[265], '\0');
    EXPECT_EQ(header[297], '\0');
    EXPECT_EQ(std::stoul(header.substr(124, 12), nullptr, 8), 7U);
    EXPECT_EQ(archive.substr(1024, 8), std::string("content\0", 8));
    EXPECT_EQ(archive.substr(1536), TarEnd());
}

TEST(Tar, keepsAFilesTimeAndPermissionsWithin0777) {
    const TemporaryFolder folder;
    const std::string archive = Written([](bTar* tar) {
        WriteFile("content", "x");
        EXPECT_EQ(chmod("content", 04750), 0);
        const timespec times[2] = {{1'600'000'000, 0}, {1'600'000'000, 123'456'789}};
        EXPECT_EQ(utimensat(AT_FDCWD, "content", times, 0), 0);
        const auto file = Open("content", bFile_READ);
        EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), 1), bOK);
    });
    EXPECT_EQ(std::stoul(archive.substr(100, 8), nullptr, 8), 0750U);
    EXPECT_EQ(std::stoul(archive.substr(136, 12), nullptr, 8), 1'600'000'000U);
}

TEST(Tar, writesTheSameBytesForTheSameContent) {
    const TemporaryFolder folder;
    const auto fill = [](bTar* tar) {
        EXPECT_EQ(bTar_BeginWrite(tar, "größe", bTar_DIRECTORY, 0), bOK);
        EXPECT_EQ(bTar_BeginWrite(tar, std::string(150, 'n').c_str(), bTar_FILE, 0), bOK);
    };
    const std::string first = Written(fill);
    EXPECT_EQ(Written(fill), first);
}

TEST(Tar, writesPaxHeadersOnlyWhereTheyAreNeeded) {
    const TemporaryFolder folder;
    const std::string plain =
        Written([](bTar* tar) { EXPECT_EQ(bTar_BeginWrite(tar, "plain", bTar_FILE, 0), bOK); });
    EXPECT_EQ(plain[156], '0');
    for (const std::string& name : {std::string(300, 'n'), std::string("größe")}) {
        const std::string archive =
            Written([&](bTar* tar) { EXPECT_EQ(bTar_BeginWrite(tar, name.c_str(), bTar_FILE, 0), bOK); });
        EXPECT_EQ(archive[156], 'x');
        EXPECT_THAT(archive, HasSubstr(PaxRecord("path", name)));
        EXPECT_THAT(Read(archive), ElementsAre(name + "=", kRegularEnd));
    }
}

TEST(Tar, writesAPaxHeaderForASizeBeyondUstar) {
    const TemporaryFolder folder;
    WriteFile("large", "");
    static constexpr std::int64_t kSize = 9LL << 30;
    std::filesystem::resize_file("large", kSize);
    const std::string archive = Written(
        [](bTar* tar) {
            const auto file = Open("large", bFile_READ);
            EXPECT_EQ(file->Skip(kSize), kSize); // skips nine gigabytes of data that the test does not need
            EXPECT_EQ(xbTar_WriteFile(tar, "large", file.get(), kSize), bERROR_FILE);
        },
        bERROR_FILE);
    EXPECT_THAT(archive, HasSubstr(PaxRecord("size", "9663676416")));
}

TEST(Tar, refusesAFileOfAnotherSizeThanStated) {
    const TemporaryFolder folder;
    for (const std::int64_t stated : {0, 6, 8, -1}) {
        const std::string archive = Written([&](bTar* tar) {
            WriteFile("content", "1234567");
            const auto file = Open("content", bFile_READ);
            EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), stated), bERROR_FILE) << stated;
        });
        EXPECT_EQ(archive, TarEnd());
    }
}

TEST(Tar, refusesAFileThatGrewAfterOpening) {
    const TemporaryFolder folder;
    Written([](bTar* tar) {
        WriteFile("content", "1234567");
        const auto file = Open("content", bFile_READ);
        WriteFile("content", "12345678");
        EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), 7), bERROR_FILE);
    });
}

TEST(Tar, refusesAFileChangedWhilePacking) {
    const TemporaryFolder folder;
    const std::vector<std::function<void()>> changes = {
        [] { WriteFile("content", std::string(2001, 'y')); },
        [] { WriteFile("content", "y"); },
        [] { // the same length, with a later time
            const timespec times[2] = {{1'600'000'000, 0}, {1'600'000'000, 1}};
            EXPECT_EQ(utimensat(AT_FDCWD, "content", times, 0), 0);
        },
    };
    for (const std::function<void()>& change : changes) {
        Written(
            [&change](bTar* tar) {
                WriteFile("content", std::string(2000, 'x'));
                const auto file = Open("content", bFile_READ);
                onRead = change;
                EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), 2000), bERROR_FILE);
                EXPECT_FALSE(onRead);
            },
            bERROR_FILE);
    }
}

TEST(Tar, writesDefaultPermissionsForDirectoriesAndFilesWithoutData) {
    const TemporaryFolder folder;
    const std::string archive = Written([](bTar* tar) {
        EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_DIRECTORY, 0), bOK);
        EXPECT_EQ(bTar_BeginWrite(tar, "b", bTar_FILE, 0), bOK);
    });
    EXPECT_EQ(std::stoul(archive.substr(100, 8), nullptr, 8), 0755U);
    EXPECT_EQ(std::stoul(archive.substr(512 + 100, 8), nullptr, 8), 0644U);
}

TEST(Tar, cannotBeFinishedAfterAnIncompleteEntry) {
    const TemporaryFolder folder;
    const std::string archive = Written(
        [](bTar* tar) {
            WriteFile("content", std::string(2000, 'x'));
            const auto file = Open("content", bFile_READ);
            EXPECT_EQ(file->Skip(1000), 1000); // the data now ends before its size
            EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), 2000), bERROR_FILE);
            EXPECT_EQ(bTar_BeginWrite(tar, "b", bTar_DIRECTORY, 0), bERROR_FILE);
        },
        bERROR_FILE);
    EXPECT_THAT(Read(archive), testing::Contains(testing::StartsWith("a=")));
    EXPECT_LE(archive.size(), 512U + 2000U);
}

TEST(Tar, writesNoNameThatItsReadersRefuse) {
    const TemporaryFolder folder;
    const std::string archive = Written([](bTar* tar) {
        for (const char* const name : {"", "/a", "../a", "a/..", "C:a", "a\\..\\b"}) {
            EXPECT_EQ(bTar_BeginWrite(tar, name, bTar_DIRECTORY, 0), bERROR_PARAMETER) << name;
            EXPECT_EQ(Add(tar, name, "x"), bERROR_PARAMETER) << name;
        }
        EXPECT_EQ(bTar_BeginWrite(tar, nullptr, bTar_DIRECTORY, 0), bERROR_PARAMETER);
        EXPECT_EQ(bTar_BeginWrite(tar, "a", 2, 0), bERROR_PARAMETER);
        EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_DIRECTORY, 1), bERROR_PARAMETER);
        EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_FILE, -1), bERROR_PARAMETER);
        EXPECT_EQ(bTar_BeginWrite(tar, std::string(512, 'n').c_str(), bTar_DIRECTORY, 0), bERROR_TOO_LONG);
    });
    EXPECT_EQ(archive, TarEnd());
}

TEST(Tar, holdsNamesOfUpTo511Characters) {
    const TemporaryFolder folder;
    const std::string name(511, 'n');
    const std::string archive =
        Written([&](bTar* tar) { EXPECT_EQ(bTar_BeginWrite(tar, name.c_str(), bTar_FILE, 0), bOK); });
    EXPECT_THAT(Read(archive), ElementsAre(name + "=", kRegularEnd));
}

TEST(Tar, isAlsoWrittenInPieces) {
    const TemporaryFolder folder;
    const std::string archive = Written([](bTar* tar) {
        bTar_Describe(tar, {.modified = 1'700'000'000, .permissions = 0750});
        EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_DIRECTORY, 0), bOK);
        EXPECT_EQ(bTar_BeginWrite(tar, "a/b", bTar_FILE, 5), bOK);
        EXPECT_EQ(bTar_WriteBlock(tar, "12"), bOK);
        EXPECT_EQ(bTar_WriteBlock(tar, ""), bOK);
        EXPECT_EQ(bTar_WriteBlock(tar, "345"), bOK);
    });
    EXPECT_THAT(Read(archive), ElementsAre("a/", "a/b=12345", kRegularEnd));
    EXPECT_EQ(std::stoul(archive.substr(100, 8), nullptr, 8), 0750U);
    EXPECT_EQ(std::stoul(archive.substr(136, 12), nullptr, 8), 1'700'000'000U);
    EXPECT_EQ(std::stoul(archive.substr(512 + 100, 8), nullptr, 8), 0644U)
        << "a description applies to one entry";
}

TEST(Tar, requiresExactlyTheDataOfItsHeader) {
    const TemporaryFolder folder;
    Written(
        [](bTar* tar) {
            EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_FILE, 2), bOK);
            EXPECT_EQ(bTar_WriteBlock(tar, "123"), bERROR_FILE);
            EXPECT_EQ(bTar_WriteBlock(tar, "12"), bERROR_FILE);
        },
        bERROR_FILE);
    Written(
        [](bTar* tar) {
            EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_FILE, 2), bOK);
            EXPECT_EQ(bTar_WriteBlock(tar, "1"), bOK);
            EXPECT_EQ(bTar_BeginWrite(tar, "b", bTar_FILE, 0), bERROR_FILE);
        },
        bERROR_FILE);
    Written([](bTar* tar) { EXPECT_EQ(bTar_BeginWrite(tar, "a", bTar_FILE, 2), bOK); }, bERROR_FILE);
}

} // namespace
