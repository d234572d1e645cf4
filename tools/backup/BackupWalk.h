#pragma once

#include "basalt/bFile.h"
#include "cinder/bTar.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// The archive in a backup that holds the workspace.
constexpr const char* kWorkspaceArchive = "workspaces/Workspace.osws";
/// The folder of the workspace that holds its tracks.
constexpr const char* kTrackFolder = "vdk/ContourPath";

/// The name of a file in the workspace, as a user gives it: a name without "/" is a track in kTrackFolder.
/// @throws Failure with ExitCode::Misused for a name that leads out of the workspace
std::string WorkspaceName(const std::string& given);

/// A file or folder in a backup.
struct BackupEntry {
    bool isInWorkspace = false; ///< in the workspace archive, not beside it
    std::string name;           ///< without "./" and without "/" at the end
    bool isFolder = false;
    std::int64_t size = 0;
    unsigned permissions = 0;
    bool isSafe = true; ///< whether it lies inside any folder that it is unpacked into
    std::string
        copyOf; ///< of a hard link, which has no bytes of its own: the file of the same archive that has them
};

/// An archive that cannot be read on; the message says where.
class BackupDamage final : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The bytes of the entry that a visitor has been given.
class EntryContent final {
  public:
    EntryContent(bTar* tar, const std::string& name) : tar(tar), name(name) {}

    /// Gives the next bytes, which live until the next call. @return false after the last
    /// @throws BackupDamage
    [[nodiscard]] bool Next(std::string_view* block) const;

  private:
    bTar* tar;
    const std::string& name;
};

using EntryVisitor = std::function<void(const BackupEntry& entry, const EntryContent& content)>;

/// Goes through a backup from front to back, and on the way through the workspace archive in it, without
/// unpacking anything.
/// @param archive open for reading
/// @param visit is given every file and folder; what it does not read of one is passed over. It must not read
///        the workspace archive, whose entries follow
/// @return how many links and special files there were, which no reader unpacks
/// @throws BackupDamage; whatever `visit` throws
std::int64_t WalkBackup(bFile* archive, const EntryVisitor& visit);
