#include "FolderTree.h"

#include "TemporaryFolder.h"

#include <filesystem>

namespace {

std::string Utf8Of(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

} // namespace

std::map<std::string, std::string> FolderTree(const std::string& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Utf8Path(folder))) {
        const std::string name = Utf8Of(entry.path().lexically_relative(Utf8Path(folder)));
        if (entry.is_symlink())
            tree[name] = "-> " + Utf8Of(std::filesystem::read_symlink(entry.path()));
        else if (entry.is_directory())
            tree[name + "/"];
        else
            tree[name] = FileContent(Utf8Of(entry.path()));
    }
    return tree;
}
