#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A folder into which files and folders are put by names from outside. Every step goes from the folder that
/// is open down, one part of the name at a time, and never through a symbolic link.
class NarrowFolder {
  public:
    explicit NarrowFolder(const std::string& path);
    NarrowFolder(const NarrowFolder&) = delete;
    NarrowFolder& operator=(const NarrowFolder&) = delete;
    ~NarrowFolder();

    [[nodiscard]] bool IsOpen() const { return root >= 0; }

    /// Makes a folder unless it is there; the one it lies in must be. The owner may always use it.
    /// @param parts the name, none of them ".", ".." or with "/"
    [[nodiscard]] bool MakeFolder(const std::vector<std::string>& parts, unsigned permissions) const;
    /// Opens a file for writing, created or emptied; the owner may always read and write it.
    /// @return its descriptor, which the caller closes; -1 on failure
    [[nodiscard]] int OpenFile(const std::vector<std::string>& parts, unsigned permissions) const;
    /// Removes a file, if it is there.
    void RemoveFile(const std::vector<std::string>& parts) const;

  private:
    [[nodiscard]] int OpenParent(const std::vector<std::string>& parts) const;

    int root;
};
