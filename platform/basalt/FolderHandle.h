#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FileFacts.h"

#include <string>
#include <system_error>

/// An open folder. Its content is accessed by bare names, without "/", and never through a symbolic link; it
/// stays the same folder whatever happens to its path.
class FolderHandle final {
  public:
    enum class Links { Followed, Refused };

    /// Not open.
    FolderHandle() = default;
    /// Opens the folder at a path. @param links whether the path's last part may be a symbolic link
    FolderHandle(const std::string& path, Links links);

    [[nodiscard]] bool IsOpen() const { return descriptor.IsOpen(); }
    /// For the system's calls.
    [[nodiscard]] int Number() const { return descriptor.Number(); }

    /// The system's error when the folder is not open.
    [[nodiscard]] std::error_code Failure() const { return failure; }

    /// Opens a folder in this one; the result is not open when there is none.
    [[nodiscard]] FolderHandle OpenFolder(const std::string& name) const;
    /// @return the reason when the name is taken, or the folder cannot be made
    [[nodiscard]] std::error_code MakeFolder(const std::string& name, unsigned permissions) const;
    /// Facts of what has this name. @return the system's error when they cannot be read
    [[nodiscard]] std::error_code Ask(const std::string& name, FileFacts* facts) const;

    /// Gives this folder permissions and a time of modification, as far as its file system has them.
    /// @return the reason when that failed
    [[nodiscard]] std::error_code Describe(const FileFacts& facts) const;
    /// Removes a file, or a link. @return the reason when that failed
    [[nodiscard]] std::error_code RemoveFile(const std::string& name) const;
    /// Gives a file another name in the folder. @return the reason when that failed: file_exists where the
    ///         name is taken, which is then unchanged
    [[nodiscard]] std::error_code RenameToFree(const std::string& name, const std::string& free) const;

    /// Syncs the names in the folder to the disk, such as a new one after a renaming. A folder that this user
    /// may not list, or on a file system that syncs no folders, is left to the system.
    /// @return the reason when that failed
    [[nodiscard]] std::error_code Sync() const;

  private:
    explicit FolderHandle(int opened);

    [[nodiscard]] FileDescriptor OpenItself() const;

    FileDescriptor descriptor;
    std::error_code failure = std::make_error_code(std::errc::bad_file_descriptor);
};
