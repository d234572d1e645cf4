#include "server/WorkspaceTree.h"

#include "basalt/FolderReader.h"
#include "server/http/HttpError.h"

#include <algorithm>

namespace {

[[noreturn]] void Unreadable() {
    throw HttpError(500, "The workspace cannot be read.");
}

std::vector<std::string> NamesIn(const FolderHandle& folder) {
    std::vector<std::string> names;
    FolderReader reader(folder);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        names.emplace_back(entry.name);
    if (status != bERROR_END)
        Unreadable();
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

WorkspaceTree::WorkspaceTree(const FolderHandle& root) {
    Add(root, "", 0);
}

void WorkspaceTree::Add(const FolderHandle& folder, const std::string& prefix, std::size_t depth) {
    std::vector<Item> folders;
    for (const std::string& name : NamesIn(folder)) {
        Item item{prefix + name, {}};
        if (folder.Ask(name, &item.facts))
            Unreadable();
        if (item.facts.kind == FileKind::File)
            items.push_back(std::move(item));
        else if (item.facts.kind == FileKind::Folder)
            folders.push_back(std::move(item));
        else
            leftOut.Add(item.name);
    }
    for (Item& item : folders) {
        const FolderHandle next = folder.OpenFolder(item.name.substr(prefix.size()));
        if (!next.IsOpen())
            Unreadable();
        if (depth + 1 > kMaxTarDepth)
            throw HttpError(500, "The workspace's folders nest too deep.");
        items.push_back(std::move(item));
        const std::string below = items.back().name + "/";
        Add(next, below, depth + 1);
    }
}
