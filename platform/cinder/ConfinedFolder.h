#pragma once

#include "basalt/FileFacts.h"
#include "basalt/FolderHandle.h"

#include <optional>
#include <string>
#include <system_error>
#include <vector>

/// A folder in which files and folders are accessed by untrusted names. Every step opens one part of the name
/// in the folder before it, and never follows a symbolic link. The folders down to the last one stay open, so
/// that their neighbours need no further steps.
///
/// A name is given in parts, none of them ".", ".." or with "/".
class ConfinedFolder final {
  public:
    using Parts = std::vector<std::string>;

    explicit ConfinedFolder(FolderHandle root) : root(std::move(root)) {}
    ConfinedFolder(const ConfinedFolder&) = delete;
    ConfinedFolder& operator=(const ConfinedFolder&) = delete;
    ~ConfinedFolder() { static_cast<void>(Leave()); }

    /// The folder that the first `count` parts name; not open when there is none. Valid until the next call.
    [[nodiscard]] const FolderHandle& Enter(const Parts& parts, std::size_t count) {
        return Descend(parts, count, Facts::Ignored);
    }

    /// Makes a folder unless it exists; its parent must exist. Existing parents keep their permissions and
    /// times, whatever is put into them before they are left.
    /// @param isNew is set when the folder did not exist
    /// @return the reason when it does not exist afterwards
    [[nodiscard]] std::error_code MakeFolder(const Parts& parts, bool* isNew);
    /// The same, and the folder gets these permissions and this time when it is left.
    [[nodiscard]] std::error_code MakeFolder(const Parts& parts, const FileFacts& facts, bool* isNew);

    /// Leaves all folders. @return the first reason why one did not get its permissions and its time
    [[nodiscard]] std::error_code Leave();

  private:
    struct Level {
        std::string name;
        FolderHandle folder;
        std::optional<FileFacts> atLast; ///< set when the folder is left
    };

    enum class Facts { Ignored, Kept };

    const FolderHandle& Descend(const Parts& parts, std::size_t count, Facts ofFolders);
    [[nodiscard]] bool IsOpen(const Parts& parts) const;
    void LeaveDownTo(std::size_t count);

    FolderHandle root;
    std::vector<Level> levels;
    FolderHandle none; ///< has the reason why a step failed
    std::error_code failure;
};
