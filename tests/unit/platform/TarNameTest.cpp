#include "cinder/TarName.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TarName, isConfinedWhenItStaysInside) {
    for (const char* const name : {"a", "a/b/c.trk", "./a", ".", "a/", "a//b", "...", "..a/b..", "a b",
                                   "größe", "ab:c", "line\nfeed", "a\\b", ".hidden"})
        EXPECT_TRUE(IsConfinedTarName(name)) << name;
}

TEST(TarName, isNotConfinedWhenItCouldLeaveTheFolderOnAnySystem) {
    for (const char* const name : {"",      "/",        "/a",        "//a",  "..",    "../a",
                                   "a/..",  "a/../b",   "a/../../b", "./..", "\\a",   "\\\\server\\share",
                                   "..\\a", "a\\..\\b", "a/..\\b",   "C:",   "C:\\a", "C:a",
                                   "c:/a",  "a\\.."})
        EXPECT_FALSE(IsConfinedTarName(name)) << name;
}

TEST(TarName, recognisesExactlyTheDrives) {
    for (const char drive : {'a', 'b', 'z', 'A', 'B', 'Z'})
        EXPECT_FALSE(IsConfinedTarName(std::string(1, drive) + ":x")) << drive;
    for (const char other : {'`', '{', '@', '[', '0', '\xE4'})
        EXPECT_TRUE(IsConfinedTarName(std::string(1, other) + ":x")) << other;
}

TEST(TarName, isConfinedDownToADepth) {
    std::string name;
    for (std::size_t i = 0; i < kMaxTarDepth; ++i)
        name += "a/";
    EXPECT_TRUE(IsConfinedTarName(name));
    EXPECT_FALSE(IsConfinedTarName(name + "b"));
}

TEST(TarName, hasPartsWithoutEmptyOnesAndDots) {
    EXPECT_THAT(TarNameParts("a/b.c/d"), ElementsAre("a", "b.c", "d"));
    EXPECT_THAT(TarNameParts("./a//b/./"), ElementsAre("a", "b"));
    EXPECT_THAT(TarNameParts("a\\b"), ElementsAre("a\\b"));
    EXPECT_THAT(TarNameParts("./"), IsEmpty());
    EXPECT_THAT(TarNameParts(""), IsEmpty());
}

TEST(TarName, isComparedWithoutEmptyPartsAndDots) {
    EXPECT_EQ(PlainTarName("workspaces/Workspace.osws"), "workspaces/Workspace.osws");
    EXPECT_EQ(PlainTarName("./workspaces//./Workspace.osws/"), "workspaces/Workspace.osws");
    EXPECT_EQ(PlainTarName("a\\b"), "a\\b");
    EXPECT_EQ(PlainTarName("./"), "");
}

TEST(TarName, showsControlCharactersInMessagesAsQuestionMarks) {
    EXPECT_EQ(PrintableTarName("\x01\x1F \x7E\x7F\x80"), "?? ~?\x80");
    EXPECT_EQ(PrintableTarName("a\nb\x1b[2J\x7f\tö"), "a?b?[2J??ö");
}

} // namespace
