#pragma once

#include "cinder/TarName.h"

#include <QString>
#include <QStringList>

#include <string>

// The working files, relative to the working directory. Opening a source creates them, the next source
// overwrites them, and closing the window removes them.

/// The backup downloaded from a server and restored to it.
constexpr const char* kServerBackup = "./Ostra.osbak";
/// A backup unpacked.
constexpr const char* kBackupFolder = "./TmpDirBackup";
/// The workspace archive in it.
constexpr const char* kWorkspaceArchive = "./TmpDirBackup/workspaces/Workspace.osws";
/// That archive unpacked.
constexpr const char* kWorkspaceFolder = "./TmpDirOsws";

/// Unpacks a backup. @return what it holds besides files and folders. @throws Ve::Exception; what was
/// unpacked before remains
[[nodiscard]] LeftOut UnpackBackup(const std::string& backup);

/// Whether there is a workspace archive in the unpacked backup.
[[nodiscard]] bool HasWorkspace();

/// Unpacks the workspace in the unpacked backup. @return what it holds besides files and folders. @throws
/// Ve::Exception; what was unpacked before remains
[[nodiscard]] LeftOut UnpackWorkspace();

/// Whether a file is one that the next download from a server replaces.
[[nodiscard]] bool IsServerBackup(const std::string& file);

/// Whether a file lies in a folder that the next unpacking replaces.
[[nodiscard]] bool IsInWorkingFolder(const std::string& file);

/// Packs the workspace, and the backup with it. A backup that cannot be packed completely is left as it was.
/// @throws Ve::Exception
void PackBackup(const std::string& backup);

/// Removes all working files. What cannot be removed is left and logged.
void RemoveWorkingFiles();

/// The folder of the unpacked workspace that holds its tracks, relative to the working directory.
inline const QString kTrackFolder = QStringLiteral("./TmpDirOsws/vdk/ContourPath");

/// The names in `directory` that match the pattern, by name and ignoring case; none when there is no such
/// directory. @throws Ve::Exception when it cannot be read
QStringList ListFiles(const QString& directory, const QString& pattern);

/// The path of a track of the workspace.
QString WorkspaceTrack(const QString& name);

/// What follows the last "/" of a path.
QString FileNameOf(const QString& path);

/// The name under which a track is added to a workspace that already has its name: the last dot and what
/// follows it are replaced by "-New.trk"; a name without a dot gets it appended.
QString NewTrackName(const QString& name);
