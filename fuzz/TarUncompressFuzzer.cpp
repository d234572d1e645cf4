#include "Check.h"
#include "FuzzFolder.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "cinder/UnpackFolder.h"
#include "link/FileUtils.h"

#include <filesystem>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

/// Files that must not be touched, where hostile names lead to, and the links that they might go through.
void LayOut() {
    for (const char* const folder : {"stage", "stage/target", "stage/sibling"})
        fs::create_directory(folder);
    for (const char* const file : {"canary", "stage/canary", "stage/sibling/canary"})
        Store(file, "intact");
    fs::create_symlink("../canary", "stage/link");
}

Tree TreeOutside() {
    Tree outside;
    for (auto& [name, what] : TreeOf(".")) {
        if (!name.starts_with("stage/target") && !name.starts_with("archive") && !name.starts_with("again"))
            outside.emplace(name, what);
    }
    return outside;
}

/// Packing gives all folders the same permissions.
Tree WithoutFolderPermissions(Tree tree) {
    for (auto& [name, what] : tree) {
        if (what.starts_with("folder "))
            what = "folder";
    }
    return tree;
}

/// Files and folders only, with ordinary permissions, and no more of them than the archive can hold.
void CheckUnpacked(const Tree& tree, std::size_t archiveSize) {
    constexpr unsigned kOrdinary = 0777;
    constexpr std::size_t kHeader = 512;
    std::size_t contents = 0;
    for (const auto& [name, what] : tree) {
        Check(what.starts_with("file ") || what.starts_with("folder "),
              "only files and folders are unpacked");
        const std::size_t permissions = what.find(' ') + 1;
        Check(std::stoul(what.substr(permissions)) <= kOrdinary, "only ordinary permissions are given");
        if (what.starts_with("file "))
            contents += what.size();
    }
    Check(tree.size() <= 2 * archiveSize / kHeader, "there is no more than the archive has entries");
    Check(contents <= archiveSize + tree.size() * 16, "the contents are no larger than the archive");
}

bool Unpacks(const std::string& archive, const std::string& target) {
    try {
        TarUncompress(archive, target, bAlloc_Application());
        return true;
    } catch (const Ve::Exception& failure) {
        Check(failure.Function() == "TarUncompress" && failure.Status() != bOK && *failure.what() != '\0',
              "a failure says where, what and why");
        return false;
    }
}

bool UnpacksStrictly(const std::string& archive, const std::string& target) {
    try {
        UnpackFolderStrictly(archive, target, bAlloc_Application());
        return true;
    } catch (const Ve::Exception&) {
        return false;
    }
}

} // namespace

// Any bytes as an archive: unpacked, unpacked strictly, and the result packed and unpacked again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFolder folder;
    static const bool laidOut = (LayOut(), true);
    static const Tree outside = TreeOutside();
    const int freeDescriptor = FreeDescriptor();
    static_cast<void>(laidOut);
    Store("archive", data, size);

    const bool unpacks = Unpacks("archive", "stage/target");
    const Tree tree = TreeOf("stage/target");
    CheckUnpacked(tree, size);
    Check(TreeOutside() == outside, "nothing outside the target is touched");
    if (UnpacksStrictly("archive", "stage/target")) {
        Check(unpacks, "what is fit for a strict reader is fit for all");
        Check(TreeOf("stage/target") == tree, "being strict changes nothing of what is unpacked");
        TarCompress("stage/target", "archive", bAlloc_Application());
        Check(Unpacks("archive", "again"), "what was unpacked can be packed and unpacked again");
        Check(WithoutFolderPermissions(TreeOf("again")) == WithoutFolderPermissions(tree),
              "and is the same then");
    }
    Check(TreeOutside() == outside, "nothing outside the target is touched");
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return 0;
}
