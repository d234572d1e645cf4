#include "basalt/FolderReader.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include <sys/stat.h>

namespace {

using Kinds = std::map<std::string, FileKind>;

Kinds KindsIn(FolderReader reader) {
    Kinds kinds;
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        kinds.emplace(entry.name, entry.kind);
    EXPECT_EQ(status, bERROR_END);
    EXPECT_EQ(reader.Failure(), std::error_code());
    return kinds;
}

TEST(FolderReader, returnsEachNameWithItsKind) {
    const TemporaryFolder folder;
    WriteFile(".hidden", "");
    WriteFile("größe", "");
    std::filesystem::create_directories("folder/inside");
    std::filesystem::create_directory_symlink("folder", "link");
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const Kinds expected{{".hidden", FileKind::File},
                         {"größe", FileKind::File},
                         {"folder", FileKind::Folder},
                         {"link", FileKind::Link},
                         {"fifo", FileKind::Other}};
    EXPECT_EQ(KindsIn(FolderReader(".")), expected);
    EXPECT_EQ(KindsIn(FolderReader("link")), (Kinds{{"inside", FileKind::Folder}}));
    const FolderHandle handle("folder", FolderHandle::Links::Refused);
    std::filesystem::rename("folder", "renamed");
    EXPECT_EQ(KindsIn(FolderReader(handle)), (Kinds{{"inside", FileKind::Folder}}));
}

TEST(FolderReader, reportsWhyAFolderCannotBeRead) {
    const TemporaryFolder folder;
    WriteFile("file", "");
    for (const auto& [path, reason] : {std::pair{"missing", std::errc::no_such_file_or_directory},
                                       std::pair{"file", std::errc::not_a_directory}}) {
        FolderReader reader(path);
        FolderEntry entry;
        EXPECT_EQ(reader.Next(&entry), bERROR_FILE);
        EXPECT_EQ(reader.Next(&entry), bERROR_FILE);
        EXPECT_EQ(reader.Failure(), reason);
    }
}

} // namespace
