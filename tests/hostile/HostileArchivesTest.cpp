#include "HostileArchive.h"

#include "FolderTree.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "basalt/Exception.h"
#include "cinder/UnpackFolder.h"
#include "link/FileUtils.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

const std::string kTarget = "stage/out";

std::string Unpacking(const std::string& archive) {
    try {
        TarUncompress(archive, kTarget, bAlloc_Application());
        return "";
    } catch (const Ve::Exception& failure) {
        return failure.what();
    }
}

bool UnpacksStrictly(const std::string& archive) {
    try {
        UnpackFolderStrictly(archive, "strict", bAlloc_Application());
        return true;
    } catch (const Ve::Exception&) {
        return false;
    }
}

/// The message with the target's path for "@".
std::string Expected(std::string message) {
    const std::size_t at = message.find("@/");
    return at == std::string::npos ? message : message.replace(at, 1, kTarget);
}

std::map<std::string, std::string> Outside() {
    std::map<std::string, std::string> tree = FolderTree(".");
    for (auto entry = tree.begin(); entry != tree.end();) {
        const bool own = entry->first.rfind(kTarget, 0) == 0 || entry->first.rfind("strict", 0) == 0 ||
                         entry->first == "in.tar";
        entry = own ? tree.erase(entry) : std::next(entry);
    }
    return tree;
}

void ExpectOrdinary(const std::string& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat status {};
        ASSERT_EQ(lstat(entry.path().c_str(), &status), 0);
        EXPECT_TRUE(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) << entry.path();
        EXPECT_EQ(status.st_mode & 07000U, 0U) << entry.path();
        EXPECT_TRUE(S_ISDIR(status.st_mode) || status.st_nlink == 1) << entry.path();
    }
}

TEST(HostileArchives, unpackOnlyInsideTheTargetUpToTheirDefect) {
    const TemporaryFolder folder;
    const LogCapture log;
    fs::create_directories("stage/sibling");
    for (const char* const canary : {"canary", "evil", "stage/canary", "stage/evil", "stage/sibling/canary"})
        WriteFile(canary, "intact");
    const auto outside = Outside();
    for (const HostileArchive& archive : HostileArchives()) {
        SCOPED_TRACE(archive.name);
        WriteFile("in.tar", archive.content);
        EXPECT_EQ(Unpacking("in.tar"), Expected(archive.message));
        EXPECT_EQ(FolderTree(kTarget), archive.leaves);
        ExpectOrdinary(kTarget);
        EXPECT_EQ(UnpacksStrictly("in.tar"), archive.complete);
        EXPECT_EQ(Outside(), outside);
    }
}

} // namespace
