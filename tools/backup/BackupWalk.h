#pragma once

#include "basalt/bFile.h"
#include "cinder/bTar.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// The archive in a backup that contains the workspace.
constexpr const char* kWorkspaceArchive = "workspaces/Workspace.osws";
/// The folder of the workspace that contains its tracks.
constexpr const char* kTrackFolder = "vdk/ContourPath";

/// The name of a file in the workspace, as a user gives it: a name without "/" is a track in kTrackFolder.
/// @throws Failure with ExitCode::Misused for a name that leads out of the workspace
std::string WorkspaceName(const std::string& given);

/// A file or folder in a backup.
struct BackupEntry {
    bool isInWorkspace = false; ///< in the workspace archive, not in the outer one
    std::string name;           ///< without "./" and without "/" at the end
    bool isFolder = false;
    std::int64_t size = 0;
    unsigned permissions = 0;
    bool isSafe = true; ///< whether its name stays within the folder that it is unpacked into
    std::string copyOf; ///< for a hard link: the file of the same archive that has the content
};

/// An archive that cannot be read further; the message says where.
class BackupDamage final : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The content of the entry that is being visited.
class EntryContent final {
  public:
    EntryContent(bTar* tar, const std::string& name) : tar(tar), name(name) {}

    /// Gives the next bytes, valid until the next call. @return false at the end
    /// @throws BackupDamage
    [[nodiscard]] bool Next(std::string_view* block) const;

  private:
    bTar* tar;
    const std::string& name;
};

using EntryVisitor = std::function<void(const BackupEntry& entry, const EntryContent& content)>;

/// Visits the entries of a backup in order, and those of the workspace archive in it, without unpacking.
/// @param archive open for reading
/// @param visit called for every file and folder; it may read the content, but not that of the workspace
///        archive, whose entries follow
/// @return the number of links and special files, which are not unpacked
/// @throws BackupDamage, and anything that `visit` throws
std::int64_t WalkBackup(bFile* archive, const EntryVisitor& visit);
