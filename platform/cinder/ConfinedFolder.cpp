#include "cinder/ConfinedFolder.h"

bool ConfinedFolder::MakeFolder(const std::vector<std::string>& parts, unsigned permissions) const {
    if (parts.empty())
        return IsOpen();
    const FolderHandle parent = OpenParent(parts);
    return parent.MakeFolder(parts.back(), permissions | 0700U) || parent.OpenFolder(parts.back()).IsOpen();
}

FolderHandle ConfinedFolder::OpenParent(const std::vector<std::string>& parts) const {
    FolderHandle folder = root.OpenFolder(".");
    for (std::size_t i = 0; i + 1 < parts.size() && folder.IsOpen(); ++i)
        folder = folder.OpenFolder(parts[i]);
    return folder;
}
