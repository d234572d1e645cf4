#pragma once

#include "basalt/FileDescriptor.h"

#include <optional>
#include <string>

/// Whom a file or a folder belongs to, and what its owner, its group and everybody may do with it: the one
/// policy by which something new takes the place of something old.
class FileOwnership final {
  public:
    /// That of an existing file or folder, through symbolic links; nothing when it cannot be found out.
    static std::optional<FileOwnership> Of(const std::string& path);

    /// Whether both belong to the same owner and the same group.
    [[nodiscard]] bool BelongsLike(const FileOwnership& other) const {
        return owner == other.owner && group == other.group;
    }

    /// Gives a new file to this owner and this group, as far as this user may give files away, and gives it
    /// these permissions. A group that could not be given gets no more than everybody has: its rights were
    /// another group's.
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
    std::string accessList;   ///< Windows: who may do what, where it is more than the folder hands down
    bool isProtected = false; ///< and whether the folder hands nothing down
};

/// Whether the user that the process acts as may write an existing file.
[[nodiscard]] bool MayWrite(const std::string& path);
