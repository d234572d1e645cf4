#include "TarFiles.h"

#include "FailingAllocator.h"
#include "RunTool.h"

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;

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
    ArchiveReader reader(TarLink("one\n", '2', "x") + TarFile("a", "") + TarLink("two", '6', "") + TarEnd());
    EXPECT_EQ(reader.Next(), bOK);
    EXPECT_THAT(bTar_LeftOut(reader.tar.get()).names, ElementsAre("one?"));
    EXPECT_EQ(reader.Next(), bERROR_END);
    EXPECT_THAT(bTar_LeftOut(reader.tar.get()).names, ElementsAre("one?", "two"));
    EXPECT_EQ(bTar_LeftOut(reader.tar.get()).count, 2);
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
    EXPECT_THAT(Read(TarFile("a", block)), ElementsAre("a=" + block, kDamaged)) << "its data is complete";
    EXPECT_THAT(Read(TarEnd().substr(512)), ElementsAre(kDamaged));
    EXPECT_THAT(Read(""), ElementsAre(kDamaged));
}

TEST(Tar, endsAtDamage) {
    const TemporaryFolder folder;
    TarBlockEntry damaged;
    damaged.name = "b";
    damaged.wrongChecksum = true;
    EXPECT_THAT(Read(TarFile("a", "x") + TarBlocks(damaged) + TarFile("c", "x") + TarEnd()),
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
    ArchiveReader reader(hole(0) + hole(1) + hole(2) + TarEnd());
    for (const bStatus expected : {bOK, bOK, bERROR_FORMAT}) {
        ASSERT_EQ(reader.Next(), bOK);
        EXPECT_EQ(reader.size, 400'000'000);
        EXPECT_EQ(bTar_ReadBlock(reader.tar.get(), &reader.block), expected);
    }
    EXPECT_EQ(reader.Next(), bERROR_END);
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
        const auto source = [&](char* buffer, std::size_t, std::string_view* block) {
            const std::size_t size = std::min<std::size_t>(512, readable - given);
            archive.copy(buffer, size, given);
            given += size;
            *block = {buffer, size};
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
                return std::to_string(status) + " after " + name.data();
            while ((status = bTar_ReadBlock(tar.get(), &block)) == bOK)
                continue;
            if (status != bERROR_END)
                return std::to_string(status) + " in " + name.data();
        }
    };
    EXPECT_EQ(ending(0), std::to_string(bERROR_FILE) + " at the start");
    EXPECT_EQ(ending(1024), std::to_string(bERROR_FILE) + " after a");
    EXPECT_EQ(ending(2048), std::to_string(bERROR_FILE) + " in b");
    EXPECT_EQ(ending(2560), std::to_string(bERROR_FILE) + " after b");
}

/// The status of the first file of an archive, which follows this number of links.
bStatus StatusAfterLinks(std::int64_t count) {
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
    EXPECT_EQ(StatusAfterLinks(999'999), bOK);
    EXPECT_EQ(StatusAfterLinks(1'000'000), bERROR_LIMIT);
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
    EXPECT_EQ(bTar_BeginRead(tar.get(), name, 2, &kind, &size), bOK)
        << "space for one letter and the terminator";
    EXPECT_STREQ(name, "a");
}

TEST(Tar, reportsTruncationAtEveryBlockAndNeverAPartialFile) {
    const TemporaryFolder folder;
    const std::string archive = TarFolder("a") + TarFile("a/one", std::string(1500, '1')) +
                                TarPax(PaxRecord("path", "a/zwö")) + TarFile("s", std::string(512, '\0')) +
                                TarFile("a/three", "") + TarEnd();
    const std::vector<std::string> complete = Read(archive);
    ASSERT_EQ(complete.back(), kRegularEnd);
    for (std::size_t length = 0; length < archive.size(); length += 256) {
        std::vector<std::string> lines = Read(archive.substr(0, length));
        EXPECT_NE(lines.back(), kRegularEnd) << length;
        lines.pop_back();
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_TRUE(lines[i] == complete.at(i) || lines[i].ends_with("!" + kDamaged)) << length;
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
    ArchiveReader reader(TarBlocks(entry) + TarEnd());
    ASSERT_EQ(reader.Next(), bOK);
    EXPECT_EQ(bTar_Facts(reader.tar.get()).permissions, 0755U);
}

TEST(Tar, skipsUnreadData) {
    const TemporaryFolder folder;
    ArchiveReader reader(TarFile("a", std::string(700'000, 'a')) + TarFile("b", "b") + TarEnd());
    ASSERT_EQ(reader.Next(), bOK);
    EXPECT_EQ(reader.size, 700'000);
    ASSERT_EQ(reader.Next(), bOK);
    EXPECT_STREQ(reader.name.data(), "b");
    EXPECT_EQ(reader.Next(), bERROR_END);
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
