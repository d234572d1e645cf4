#include "cinder/bTar.h"

#include "FailingAllocator.h"
#include "RunTool.h"
#include "TarBlocks.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The linker puts this function in the place of the system's (see --wrap in CMakeLists.txt).
ssize_t WatchedRead(int descriptor, void* data, std::size_t size) __asm__("__wrap_read");
ssize_t RealRead(int descriptor, void* data, std::size_t size) __asm__("__real_read");

namespace {

/// Done once, when the next piece of a file has been read.
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

bOwned<bFile> Open(const char* path, int mode) {
    bFile* file = nullptr;
    EXPECT_EQ(bFile_Construct(&file, path, mode, bAlloc_Application()), bOK) << path;
    return bOwned<bFile>(file);
}

bOwned<bTar> OpenTar(const bOwned<bFile>& file, int mode) {
    bTar* tar = nullptr;
    EXPECT_EQ(bTar_Construct(&tar, file.get(), mode, bAlloc_Application()), bOK);
    return bOwned<bTar>(tar);
}

/// What a reader says of an archive: an entry a line, its data after "=", and the status that ends it.
std::vector<std::string> Read(const std::string& archive) {
    WriteFile("read.tar", archive);
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    std::vector<std::string> lines;
    std::array<char, bTar_NAME_SIZE> name{};
    int kind = 0;
    std::int64_t size = 0;
    bStatus status = bOK;
    while ((status = bTar_BeginRead(tar.get(), name.data(), name.size(), &kind, &size)) == bOK) {
        if (const char* const target = bTar_LinkTarget(tar.get())) {
            lines.push_back(std::string(name.data()) + "->" + target);
            continue;
        }
        std::string line = std::string(name.data()) + (kind == bTar_DIRECTORY ? "/" : "=");
        std::string_view block;
        bStatus read = bOK;
        while ((read = bTar_ReadBlock(tar.get(), &block)) == bOK)
            line += block;
        lines.push_back(read == bERROR_END ? line : line + "!" + std::to_string(read));
    }
    lines.push_back(std::to_string(status));
    return lines;
}

const std::string kRegularEnd = std::to_string(bERROR_END);
const std::string kDamaged = std::to_string(bERROR_FORMAT);

/// Writes an archive by `fill` and gives its bytes; the status of its end must be `expected`.
std::string Written(const std::function<void(bTar*)>& fill, bStatus expected = bOK) {
    {
        const auto file = Open("written.tar", bFile_WRITE);
        auto tar = OpenTar(file, bFile_WRITE);
        fill(tar.get());
        EXPECT_EQ(xbObject_DestroyImpl(tar.release()), expected);
        EXPECT_EQ(bFile_Commit(file.get()), bOK);
    }
    return FileContent("written.tar");
}

bStatus Add(bTar* tar, const std::string& name, const std::string& content) {
    WriteFile("content", content);
    const auto file = Open("content", bFile_READ);
    return xbTar_WriteFile(tar, name.c_str(), file.get(), static_cast<std::int64_t>(content.size()));
}

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
            EXPECT_EQ(file->Skip(kSize), kSize); // its data is of no interest, and nine gigabytes long
            EXPECT_EQ(xbTar_WriteFile(tar, "large", file.get(), kSize), bERROR_FILE);
        },
        bERROR_FILE);
    EXPECT_THAT(archive, HasSubstr(PaxRecord("size", "9663676416")));
}

TEST(Tar, refusesAFileOfAnotherSizeThanStated) {
    const TemporaryFolder folder;
    for (const std::int64_t told : {0, 6, 8, -1}) {
        const std::string archive = Written([&](bTar* tar) {
            WriteFile("content", "1234567");
            const auto file = Open("content", bFile_READ);
            EXPECT_EQ(xbTar_WriteFile(tar, "a", file.get(), told), bERROR_FILE) << told;
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
        [] { // as long as before, and so later
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
            EXPECT_EQ(file->Skip(1000), 1000); // so that the data ends before the size does
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

TEST(Tar, reportsATooLongNameInsteadOfTheShortOne) {
    const TemporaryFolder folder;
    for (const std::string& before :
         {TarGnuLongName(std::string(512, 'n')), TarPax(PaxRecord("path", std::string(512, 'n')))})
        EXPECT_THAT(Read(before + TarFile("short", "x") + TarEnd()),
                    ElementsAre(std::to_string(bERROR_TOO_LONG)));
}

TEST(Tar, readsUstarPaxAndGnuNames) {
    const TemporaryFolder folder;
    TarBlockEntry prefixed;
    prefixed.name = "name";
    prefixed.prefix = "pre/fix";
    const std::string archive = TarFolder("folder/") + TarFile("folder/file", "data") + TarBlocks(prefixed) +
                                TarPax(PaxRecord("path", "größe/ünd")) + TarFile("short", "pax") +
                                TarGnuLongName(std::string(200, 'g')) + TarFile("short", "gnu") + TarEnd();
    EXPECT_THAT(Read(archive), ElementsAre("folder/", "folder/file=data", "pre/fix/name=", "größe/ünd=pax",
                                           std::string(200, 'g') + "=gnu", kRegularEnd));
}

TEST(Tar, keepsTheBytesOfNames) {
    const TemporaryFolder folder;
    const std::string decomposed = "u\xcc\x88.trk";
    const std::string latin = "gr\xf6\xdf"
                              "e";
    EXPECT_THAT(Read(TarFile(decomposed, "1") + TarFile(latin, "2") + TarPax(PaxRecord("path", decomposed)) +
                     TarFile("short", "3") + TarPax(PaxRecord("path", latin)) + TarFile("short", "4") +
                     TarEnd()),
                ElementsAre(decomposed + "=1", latin + "=2", decomposed + "=3", latin + "=4", kRegularEnd));
    for (const std::string& name : {decomposed, latin})
        EXPECT_THAT(Read(Written([&](bTar* tar) { EXPECT_EQ(Add(tar, name, "x"), bOK); })),
                    ElementsAre(name + "=x", kRegularEnd));
}

TEST(Tar, skipsEverythingButFilesAndDirectories) {
    const TemporaryFolder folder;
    std::string archive = TarFile("first", "1");
    archive += TarLink("symbolic", '2', "/etc/passwd") + TarLink("hard", '1', "first");
    for (const char type : {'3', '4', '6'})
        archive += TarLink("device", type, "");
    archive += TarPax(PaxRecord("linkpath", "/etc/passwd")) + TarLink("pax link", '2', "short");
    archive += TarFile("last", "2") + TarEnd();
    EXPECT_THAT(Read(archive), ElementsAre("first=1", "hard->first", "last=2", kRegularEnd));
}

TEST(Tar, namesOmittedEntries) {
    const TemporaryFolder folder;
    WriteFile("read.tar", TarLink("one\n", '2', "x") + TarFile("a", "") + TarLink("two", '6', "") + TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    char name[bTar_NAME_SIZE];
    int kind = 0;
    std::int64_t size = 0;
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bOK);
    EXPECT_THAT(bTar_LeftOut(tar.get()).names, ElementsAre("one?"));
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bERROR_END);
    EXPECT_THAT(bTar_LeftOut(tar.get()).names, ElementsAre("one?", "two"));
    EXPECT_EQ(bTar_LeftOut(tar.get()).count, 2);
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
        << "a description is for one entry";
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

TEST(Tar, readsAnOldDirectoryMarkedOnlyByItsName) {
    const TemporaryFolder folder;
    EXPECT_THAT(Read(TarFile("folder/", "") + TarEnd()), ElementsAre("folder/", kRegularEnd));
    EXPECT_THAT(Read(TarFile("file/", "x") + TarEnd()), ElementsAre("file/", kDamaged));
}

TEST(Tar, needsItsEndMark) {
    const TemporaryFolder folder;
    const std::string entry = TarFile("a", "x");
    EXPECT_THAT(Read(entry + TarEnd()), ElementsAre("a=x", kRegularEnd));
    EXPECT_THAT(Read(entry + TarEnd() + std::string(8192, '\0')), ElementsAre("a=x", kRegularEnd));
    EXPECT_THAT(Read(TarEnd()), ElementsAre(kRegularEnd));
    EXPECT_THAT(Read(entry), ElementsAre("a=x", kDamaged));
    EXPECT_THAT(Read(entry + TarEnd().substr(512)), ElementsAre("a=x", kDamaged));
    EXPECT_THAT(Read(entry + TarEnd().substr(1)), ElementsAre("a=x", kDamaged));
    const std::string block(512, 'x');
    EXPECT_THAT(Read(TarFile("a", block)), ElementsAre("a=" + block, kDamaged)) << "all of it is there";
    EXPECT_THAT(Read(TarEnd().substr(512)), ElementsAre(kDamaged));
    EXPECT_THAT(Read(""), ElementsAre(kDamaged));
}

TEST(Tar, endsAtDamage) {
    const TemporaryFolder folder;
    TarBlockEntry spoilt;
    spoilt.name = "b";
    spoilt.spoiltChecksum = true;
    EXPECT_THAT(Read(TarFile("a", "x") + TarBlocks(spoilt) + TarFile("c", "x") + TarEnd()),
                ElementsAre("a=x", kDamaged));
    EXPECT_THAT(Read(TarFile("a", "x") + std::string(512, '#') + TarEnd()), ElementsAre("a=x", kDamaged));
    EXPECT_THAT(Read(TarFile("a", "x") + std::string(100, '\0')), ElementsAre("a=x", kDamaged));
    EXPECT_THAT(Read(std::string(5000, '#')), ElementsAre(kDamaged));
}

TEST(Tar, endsAtAFalsePaxRecordInsteadOfUsingTheShortName) {
    const TemporaryFolder folder;
    for (const std::string& records : {PaxRecord("path", "long.trk", 90), PaxRecord("path", "long.trk", -5),
                                       std::string("path=long.trk\n"), std::string("0 path=long.trk\n"),
                                       std::string("99999999999999999999999 path=x\n"),
                                       PaxRecord("size", "-9"), std::string("16 path=long.trk")})
        EXPECT_THAT(Read(TarPax(records) + TarFile("short.trk", "x") + TarEnd()), ElementsAre(kDamaged))
            << records;
}

TEST(Tar, refusesAnEntryLargerThanTheArchive) {
    const TemporaryFolder folder;
    for (const long long size : {2000LL, 10LL << 30, 0x7FFFFFFFFFFFFFFELL}) {
        TarBlockEntry entry;
        entry.name = "a";
        entry.content = "x";
        entry.size = size;
        EXPECT_EQ(Read(TarBlocks(entry) + TarEnd()).front(), "a=!" + kDamaged) << size;
    }
}

TEST(Tar, readsASparseFileAsBsdtarPacksIt) {
    const TemporaryFolder folder;
    constexpr std::size_t kSize = 3'000'000;
    std::string content(kSize, '\0');
    content.replace(1'000'000, 4, "data");
    content.replace(kSize - 4, 4, "last");
    const int file = open("sparse", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    EXPECT_EQ(pwrite(file, "data", 4, 1'000'000), 4);
    EXPECT_EQ(pwrite(file, "last", 4, kSize - 4), 4);
    close(file);
    for (const char* const tool : {"bsdtar -cf sparse.tar sparse", "tar -Scf sparse.tar sparse",
                                   "tar -Scf sparse.tar --format=pax sparse"}) {
        ASSERT_EQ(RunTool(tool), "");
        if (FileContent("sparse.tar").size() > kSize)
            GTEST_SKIP() << "this file system has no holes";
        EXPECT_TRUE(Read(FileContent("sparse.tar")) ==
                    (std::vector<std::string>{"sparse=" + content, kRegularEnd}))
            << tool;
    }
}

TEST(Tar, refusesHolesOfMoreThanAGigabyteInAll) {
    const TemporaryFolder folder;
    const auto hole = [](int number) {
        return TarPax(PaxRecord("GNU.sparse.name", "hole" + std::to_string(number)) +
                      PaxRecord("GNU.sparse.size", "400000000") +
                      PaxRecord("GNU.sparse.map", "400000000,0")) +
               TarFile("short", "");
    };
    WriteFile("read.tar", hole(0) + hole(1) + hole(2) + TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    char name[bTar_NAME_SIZE];
    int kind = 0;
    std::int64_t size = 0;
    std::string_view block;
    for (const bStatus expected : {bOK, bOK, bERROR_FORMAT}) {
        ASSERT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bOK);
        EXPECT_EQ(size, 400'000'000);
        EXPECT_EQ(bTar_ReadBlock(tar.get(), &block), expected);
    }
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bERROR_END);
}

TEST(Tar, refusesAHoleOfTerabytes) {
    const TemporaryFolder folder;
    EXPECT_THAT(
        Read(TarPax(PaxRecord("GNU.sparse.name", "hole") + PaxRecord("GNU.sparse.size", "4398046511104") +
                    PaxRecord("GNU.sparse.map", "4398046511103,1")) +
             TarFile("short", "x") + TarFile("good", "x") + TarEnd()),
        ElementsAre("hole=!" + kDamaged, "good=x", kRegularEnd));
}

TEST(Tar, refusesSparseFilePiecesOutOfOrder) {
    const TemporaryFolder folder;
    for (const char* const map : {"900,3,500,2", "500,3,501,2", "5000,3,5003,2", "1198,3,1201,2"}) {
        const std::vector<std::string> lines =
            Read(TarPax(PaxRecord("GNU.sparse.name", "hole") + PaxRecord("GNU.sparse.size", "1200") +
                        PaxRecord("GNU.sparse.map", map)) +
                 TarFile("short", "abcde") + TarEnd());
        EXPECT_THAT(lines.front(), testing::StartsWith("hole=")) << map;
        EXPECT_THAT(lines.front(), testing::EndsWith("!" + kDamaged)) << map;
        EXPECT_LE(lines.front().size(), 1210U) << map;
    }
}

TEST(Tar, trimsTrailingSlashesOfADirectoryExceptTheRoots) {
    const TemporaryFolder folder;
    EXPECT_THAT(Read(TarFolder("a//") + TarFolder("b/c///") + TarFolder("/") + TarEnd()),
                ElementsAre("a/", "b/c/", "//", kRegularEnd));
}

TEST(Tar, distinguishesAnUnreadableArchiveFromADamagedOne) {
    const std::string archive = TarFile("a", "x") + TarFile("b", std::string(1000, 'b')) + TarEnd();
    const auto ending = [&archive](std::size_t readable) {
        std::size_t given = 0;
        const auto source = [&](char* room, std::size_t, std::string_view* block) {
            const std::size_t size = std::min<std::size_t>(512, readable - given);
            archive.copy(room, size, given);
            given += size;
            *block = {room, size};
            return size > 0 ? bOK : bERROR_FILE;
        };
        bFile* opened = nullptr;
        EXPECT_EQ(bFile_ConstructOver(&opened, source, static_cast<std::int64_t>(archive.size()),
                                      bAlloc_Application()),
                  bOK);
        const bOwned<bFile> file(opened);
        bTar* made = nullptr;
        if (const bStatus status = bTar_Construct(&made, file.get(), bFile_READ, bAlloc_Application());
            status != bOK)
            return std::to_string(status) + " at the start";
        const bOwned<bTar> tar(made);
        std::array<char, bTar_NAME_SIZE> name{};
        int kind = 0;
        std::int64_t size = 0;
        std::string_view block;
        for (;;) {
            bStatus status = bTar_BeginRead(tar.get(), name.data(), name.size(), &kind, &size);
            if (status != bOK)
                return std::to_string(status) + " behind " + name.data();
            while ((status = bTar_ReadBlock(tar.get(), &block)) == bOK)
                continue;
            if (status != bERROR_END)
                return std::to_string(status) + " in " + name.data();
        }
    };
    EXPECT_EQ(ending(0), std::to_string(bERROR_FILE) + " at the start");
    EXPECT_EQ(ending(1024), std::to_string(bERROR_FILE) + " behind a");
    EXPECT_EQ(ending(2048), std::to_string(bERROR_FILE) + " in b");
    EXPECT_EQ(ending(2560), std::to_string(bERROR_FILE) + " behind b");
}

/// What the first entry of an archive of so many links, and a file behind them, is met with.
bStatus StatusBehindLinks(std::int64_t count) {
    constexpr std::int64_t kAtOnce = 500;
    const std::string end = TarFile("a", "") + TarEnd();
    std::string links;
    for (std::int64_t i = 0; i < kAtOnce; ++i)
        links += TarLink("link", '2', "a");
    std::int64_t left = count;
    const auto source = [&](char*, std::size_t, std::string_view* block) {
        const std::int64_t now = std::min(left, kAtOnce);
        *block = std::string_view(links).substr(0, static_cast<std::size_t>(now) * 512);
        if (left == 0)
            *block = end;
        left -= now;
        return bOK;
    };
    bFile* opened = nullptr;
    EXPECT_EQ(bFile_ConstructOver(&opened, source, count * 512 + static_cast<std::int64_t>(end.size()),
                                  bAlloc_Application()),
              bOK);
    const bOwned<bFile> file(opened);
    const auto tar = OpenTar(file, bFile_READ);
    std::array<char, bTar_NAME_SIZE> name{};
    int kind = 0;
    std::int64_t size = 0;
    const bStatus status = bTar_BeginRead(tar.get(), name.data(), name.size(), &kind, &size);
    EXPECT_EQ(bTar_LeftOut(tar.get()).count, status == bOK ? count : bTar_MOST_ENTRIES);
    return status;
}

TEST(Tar, readsAtMostAMillionEntries) {
    EXPECT_EQ(StatusBehindLinks(999'999), bOK);
    EXPECT_EQ(StatusBehindLinks(1'000'000), bERROR_LIMIT);
}

TEST(Tar, refusesNullAndEmptyOutputs) {
    const TemporaryFolder folder;
    WriteFile("read.tar", TarFile("a", "x") + TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    char name[2] = {'?', '?'};
    int kind = 0;
    std::int64_t size = 0;
    EXPECT_EQ(bTar_BeginRead(tar.get(), nullptr, 2, &kind, &size), bERROR_PARAMETER);
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, 0, &kind, &size), bERROR_PARAMETER);
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, 2, nullptr, &size), bERROR_PARAMETER);
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, 2, &kind, nullptr), bERROR_PARAMETER);
    EXPECT_EQ(name[0], '?');
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, 2, &kind, &size), bOK) << "room for one letter and its end";
    EXPECT_STREQ(name, "a");
}

TEST(Tar, reportsTruncationAtEveryBlockAndNeverAPartialFile) {
    const TemporaryFolder folder;
    const std::string archive = TarFolder("a") + TarFile("a/one", std::string(1500, '1')) +
                                TarPax(PaxRecord("path", "a/zwö")) + TarFile("s", std::string(512, '\0')) +
                                TarFile("a/three", "") + TarEnd();
    const std::vector<std::string> whole = Read(archive);
    ASSERT_EQ(whole.back(), kRegularEnd);
    for (std::size_t length = 0; length < archive.size(); length += 256) {
        std::vector<std::string> lines = Read(archive.substr(0, length));
        EXPECT_NE(lines.back(), kRegularEnd) << length;
        lines.pop_back();
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_TRUE(lines[i] == whole.at(i) || lines[i].ends_with("!" + kDamaged)) << length;
    }
}

TEST(Tar, refusesOtherAndCompressedFormats) {
    const TemporaryFolder folder;
    WriteFile("content", "x");
    for (const char* const tool :
         {"bsdtar --format=zip -cf other content", "bsdtar --format=cpio -cf other content",
          "bsdtar --format=mtree -cf other content", "bsdtar --format=7zip -cf other content",
          "tar -czf other content", "bsdtar -cJf other content"}) {
        ASSERT_EQ(RunTool(tool), "");
        EXPECT_THAT(Read(FileContent("other")), ElementsAre(kDamaged)) << tool;
    }
}

TEST(Tar, reportsPermissionsWithin0777) {
    const TemporaryFolder folder;
    TarBlockEntry entry;
    entry.name = "a";
    entry.mode = 07755;
    WriteFile("read.tar", TarBlocks(entry) + TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    char name[bTar_NAME_SIZE];
    int kind = 0;
    std::int64_t size = 0;
    ASSERT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bOK);
    EXPECT_EQ(bTar_Facts(tar.get()).permissions, 0755U);
}

TEST(Tar, skipsUnreadData) {
    const TemporaryFolder folder;
    WriteFile("read.tar", TarFile("a", std::string(700'000, 'a')) + TarFile("b", "b") + TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto tar = OpenTar(file, bFile_READ);
    char name[bTar_NAME_SIZE];
    int kind = 0;
    std::int64_t size = 0;
    ASSERT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bOK);
    EXPECT_EQ(size, 700'000);
    ASSERT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bOK);
    EXPECT_STREQ(name, "b");
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, sizeof name, &kind, &size), bERROR_END);
}

TEST(Tar, isNotConstructedWithoutFileModeOrMemory) {
    const TemporaryFolder folder;
    WriteFile("read.tar", TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    bTar* tar = nullptr;
    EXPECT_EQ(bTar_Construct(&tar, nullptr, bFile_READ, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(bTar_Construct(&tar, file.get(), 3, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(bTar_Construct(nullptr, file.get(), bFile_READ, bAlloc_Application()), bERROR_PARAMETER);
    for (const int failing : {1, 2}) {
        FailingAllocator allocator(failing);
        EXPECT_EQ(bTar_Construct(&tar, file.get(), bFile_READ, &allocator), bERROR_MEMORY);
        EXPECT_EQ(tar, nullptr);
        EXPECT_EQ(allocator.Living(), 0);
    }
}

TEST(Tar, isEitherReadOrWritten) {
    const TemporaryFolder folder;
    WriteFile("read.tar", TarEnd());
    const auto file = Open("read.tar", bFile_READ);
    const auto reader = OpenTar(file, bFile_READ);
    EXPECT_EQ(bTar_BeginWrite(reader.get(), "a", bTar_DIRECTORY, 0), bERROR_PARAMETER);
    EXPECT_EQ(xbTar_WriteFile(reader.get(), "a", file.get(), 0), bERROR_PARAMETER);
    Written([](bTar* writer) {
        char name[bTar_NAME_SIZE];
        int kind = 0;
        std::int64_t size = 0;
        std::string_view block;
        EXPECT_EQ(bTar_BeginRead(writer, name, sizeof name, &kind, &size), bERROR_PARAMETER);
        EXPECT_EQ(bTar_ReadBlock(writer, &block), bERROR_PARAMETER);
    });
}

} // namespace
