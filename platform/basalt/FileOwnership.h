#pragma once

#include "basalt/FileDescriptor.h"

#include <optional>
#include <string>

/// The owner and group of a file or a folder, and their and everybody's permissions: what a replacement
/// inherits from what it replaces.
class FileOwnership final {
  public:
    /// That of an existing file or folder, through symbolic links; none when it cannot be read.
    static std::optional<FileOwnership> Of(const std::string& path);

    /// Whether both belong to the same owner and the same group.
    [[nodiscard]] bool BelongsLike(const FileOwnership& other) const {
        return owner == other.owner && group == other.group;
    }

    /// Gives a new file this owner and group, as far as this user may change them, and these permissions. If
    /// the group could not be set, the file's group gets no more than everybody has, since the rights were
    /// meant for another group.
    /// @return false when the permissions could not be set
    [[nodiscard]] bool GiveTo(const FileDescriptor& file) const;
    /// The same for a file or a folder that is not open. A link is not followed.
    [[nodiscard]] bool GiveTo(const std::string& path) const;

  private:
    FileOwnership() = default;

    template<class State, class ChangeOwner, class ChangeMode>
    [[nodiscard]] bool Give(const State& own, ChangeOwner changeOwner, ChangeMode changeMode) const;

    unsigned owner = 0;
    unsigned group = 0;
    unsigned permissions = 0; ///< within kPermissionBits
    std::string accessList;   ///< Windows: the access list, if it differs from the inherited one
    bool isProtected = false; ///< Windows: whether nothing is inherited from the folder
};

/// Whether the user that the process acts as may write an existing file.
[[nodiscard]] bool MayWrite(const std::string& path);
