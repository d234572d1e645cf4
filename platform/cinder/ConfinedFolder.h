#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A folder into which files and folders are put by names from outside. Every step goes from the folder that
/// is open down, one part of the name at a time, and never through a symbolic link.
class ConfinedFolder {
  public:
    explicit ConfinedFolder(const std::string& path);
    ConfinedFolder(const ConfinedFolder&) = delete;
    ConfinedFolder& operator=(const ConfinedFolder&) = delete;
    ~ConfinedFolder();

    [[nodiscard]] bool IsOpen() const { return root >= 0; }

    /// Makes a folder unless it is there; the one it lies in must be. The owner may always use it.
    /// @param parts the name, none of them ".", ".." or with "/"
    [[nodiscard]] bool MakeFolder(const std::vector<std::string>& parts, unsigned permissions) const;
    /// Opens the folder that a name lies in. @param parts at least one
    /// @return its descriptor, which the caller closes; -1 when it is not there
    [[nodiscard]] int OpenParent(const std::vector<std::string>& parts) const;

  private:
    int root;
};
