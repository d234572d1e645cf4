#pragma once

#include "basalt/FolderHandle.h"

#include <string>
#include <vector>

/// A folder into which files and folders are put by names from outside. Every step goes from the folder that
/// is open down, one part of the name at a time, and never through a symbolic link.
class ConfinedFolder final {
  public:
    /// @param path not a symbolic link
    explicit ConfinedFolder(const std::string& path) : root(path, FolderHandle::Links::Refused) {}

    [[nodiscard]] bool IsOpen() const { return root.IsOpen(); }

    /// Makes a folder unless it exists; the one it lies in must exist. The owner may always use it.
    /// @param parts the name, none of them ".", ".." or with "/"
    [[nodiscard]] bool MakeFolder(const std::vector<std::string>& parts, unsigned permissions) const;
    /// Opens the folder that a name lies in; the result is not open when there is none.
    /// @param parts at least one
    [[nodiscard]] FolderHandle OpenParent(const std::vector<std::string>& parts) const;

  private:
    FolderHandle root;
};
