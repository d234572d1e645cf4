#include "FolderTree.h"

#include "TemporaryFolder.h"

namespace fs = std::filesystem;

std::string Utf8Text(const fs::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

std::map<std::string, std::string> FolderTree(const std::string& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(Utf8Path(folder))) {
        const std::string name = Utf8Text(entry.path().lexically_relative(Utf8Path(folder)));
        if (entry.is_symlink())
            tree[name] = "-> " + Utf8Text(fs::read_symlink(entry.path()));
        else if (entry.is_directory())
            tree[name + "/"];
        else
            tree[name] = FileContent(Utf8Text(entry.path()));
    }
    return tree;
}
