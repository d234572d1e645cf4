#include "basalt/bDirectory.h"

#include "FailingAllocator.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bOwned<bArrayList> NewList() {
    bArrayList* list = nullptr;
    EXPECT_EQ(bArrayList_Construct(&list, bString_TYPE, 10, bAlloc_Application()), bOK);
    return bOwned<bArrayList>(list);
}

TEST(Directory, existsOnlyWhenItIsADirectory) {
    const TemporaryFolder folder;
    WriteFile("file", "");
    std::filesystem::create_directory("real");
    std::filesystem::create_directory_symlink("real", "link");
    std::filesystem::create_directory_symlink("nowhere", "broken");
    EXPECT_NE(bDirectory_Exists("real"), 0);
    EXPECT_NE(bDirectory_Exists("real/"), 0);
    EXPECT_NE(bDirectory_Exists("link"), 0);
    EXPECT_EQ(bDirectory_Exists("broken"), 0);
    EXPECT_EQ(bDirectory_Exists("file"), 0);
    EXPECT_EQ(bDirectory_Exists("missing"), 0);
}

TEST(Directory, isCreatedOneLevelAtATime) {
    const TemporaryFolder folder;
    EXPECT_EQ(bDirectory_Create("a/b"), bERROR_FILE);
    EXPECT_EQ(bDirectory_Create("a"), bOK);
    EXPECT_EQ(bDirectory_Create("a/b"), bOK);
    EXPECT_TRUE(std::filesystem::is_directory("a/b"));
    EXPECT_EQ(bDirectory_Create("a"), bERROR_FILE);
    WriteFile("file", "");
    EXPECT_EQ(bDirectory_Create("file"), bERROR_FILE);
}

TEST(Directory, isDeletedWithEverythingInIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directories("tree/a/b");
    WriteFile("tree/a/b/file", "x");
    EXPECT_EQ(bDirectory_Delete("tree/"), bOK);
    EXPECT_FALSE(std::filesystem::exists("tree"));
    EXPECT_EQ(bDirectory_Delete("tree"), bERROR_NOT_FOUND);
}

TEST(Directory, isDeletedWithoutFollowingLinks) {
    const TemporaryFolder folder;
    std::filesystem::create_directories("tree");
    std::filesystem::create_directories("outside");
    WriteFile("outside/kept", "x");
    std::filesystem::create_directory_symlink("../outside", "tree/link");
    EXPECT_EQ(bDirectory_Delete("tree"), bOK);
    EXPECT_EQ(FileContent("outside/kept"), "x");
    std::filesystem::create_directory_symlink("outside", "link");
    EXPECT_EQ(bDirectory_Delete("link/"), bOK);
    EXPECT_FALSE(std::filesystem::is_symlink("link"));
    EXPECT_EQ(FileContent("outside/kept"), "x");
}

TEST(Directory, deletesNoFile) {
    const TemporaryFolder folder;
    WriteFile("file", "x");
    EXPECT_EQ(bDirectory_Delete("file"), bERROR_FILE);
    EXPECT_EQ(FileContent("file"), "x");
}

TEST(Directory, isNotDeletedWhenItCannotBeEmptied) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    std::filesystem::create_directories("tree/locked");
    WriteFile("tree/locked/file", "x");
    ASSERT_EQ(chmod("tree/locked", 0500), 0);
    EXPECT_EQ(bDirectory_Delete("tree"), bERROR_FILE);
    EXPECT_EQ(FileContent("tree/locked/file"), "x");
    ASSERT_EQ(chmod("tree/locked", 0700), 0);
}

TEST(Directory, listsRegularFilesAndRealDirectoriesByName) {
    const TemporaryFolder folder;
    WriteFile("b", "");
    WriteFile("a", "");
    WriteFile("B", "");
    WriteFile(".hidden", "");
    WriteFile("größe", "");
    std::filesystem::create_directories("z/inside");
    std::filesystem::create_directory("y");
    std::filesystem::create_symlink("a", "linkToFile");
    std::filesystem::create_directory_symlink("y", "linkToFolder");
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const auto list = NewList();
    ASSERT_EQ(list->Add("from before"), bOK);
    EXPECT_EQ(bDirectory_ListFiles(".", list.get()), bOK);
    EXPECT_THAT(list->Items(), ElementsAre(".hidden", "B", "a", "b", "größe"));
    EXPECT_EQ(bDirectory_ListDirectories(".", list.get()), bOK);
    EXPECT_THAT(list->Items(), ElementsAre("y", "z"));
    EXPECT_EQ(bDirectory_ListDirectories("y", list.get()), bOK);
    EXPECT_THAT(list->Items(), IsEmpty());
}

TEST(Directory, isNotListedWhenItCannotBeRead) {
    const TemporaryFolder folder;
    const auto list = NewList();
    EXPECT_EQ(bDirectory_ListFiles("missing", list.get()), bERROR_FILE);
    EXPECT_EQ(bDirectory_ListDirectories("missing", list.get()), bERROR_FILE);
}

TEST(ArrayList, staysUnchangedWhenMemoryIsOut) {
    FailingAllocator allocator(3); // the object, the capacity for one item, then the item's string
    bArrayList* made = nullptr;
    ASSERT_EQ(bArrayList_Construct(&made, bString_TYPE, 1, &allocator), bOK);
    EXPECT_EQ(made->Add(std::string(100, 'x')), bERROR_MEMORY);
    EXPECT_THAT(made->Items(), IsEmpty());
    EXPECT_EQ(made->Add("short"), bOK);
    EXPECT_EQ(made->Add(std::string(100, 'y')), bOK);
    EXPECT_THAT(made->Items(), ElementsAre("short", bString(100, 'y')));
    EXPECT_EQ(xbObject_DestroyImpl(made), bOK);
    EXPECT_EQ(allocator.Living(), 0);
}

TEST(ArrayList, isNotConstructedWithoutMemoryOrType) {
    for (const int failing : {1, 2}) {
        FailingAllocator allocator(failing);
        bArrayList* list = nullptr;
        EXPECT_EQ(bArrayList_Construct(&list, bString_TYPE, 10, &allocator), bERROR_MEMORY);
        EXPECT_EQ(list, nullptr);
        EXPECT_EQ(allocator.Living(), 0);
    }
    bArrayList* list = nullptr;
    EXPECT_EQ(bArrayList_Construct(&list, static_cast<bType>(2), 10, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(bArrayList_Construct(nullptr, bString_TYPE, 10, bAlloc_Application()), bERROR_PARAMETER);
    EXPECT_EQ(bArrayList_Construct(&list, bString_TYPE, 10, nullptr), bERROR_PARAMETER);
}

TEST(Object, acceptsDestroyingNull) {
    EXPECT_EQ(xbObject_DestroyImpl(nullptr), bOK);
}

} // namespace
