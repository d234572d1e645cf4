#pragma once

#include "cinder/LeftOut.h"

#include <string>

// The working files, relative to the working directory. They are made by opening a source, written over by
// the next one, and removed with the window.

/// The backup downloaded from a server and restored to it.
constexpr const char* kServerBackup = "./Ostra.osbak";
/// A backup unpacked.
constexpr const char* kBackupFolder = "./TmpDirBackup";
/// The workspace archive in it.
constexpr const char* kWorkspaceArchive = "./TmpDirBackup/workspaces/Workspace.osws";
/// That archive unpacked.
constexpr const char* kWorkspaceFolder = "./TmpDirOsws";

/// Unpacks a backup. @return what it holds beside files and folders. @throws Ve::Exception; what was unpacked
/// before stays
[[nodiscard]] LeftOut UnpackBackup(const std::string& backup);

/// Whether there is a workspace archive in the unpacked backup.
[[nodiscard]] bool HasWorkspace();

/// Unpacks the workspace in the unpacked backup. @return what it holds beside files and folders. @throws
/// Ve::Exception; what was unpacked before stays
[[nodiscard]] LeftOut UnpackWorkspace();

/// Whether a file is one that the next download from a server replaces.
[[nodiscard]] bool IsServerBackup(const std::string& file);

/// Whether a file lies in a folder that the next unpacking replaces.
[[nodiscard]] bool IsInWorkingFolder(const std::string& file);

/// Packs the workspace, and the backup with it. A backup that cannot be packed whole stays as it was.
/// @throws Ve::Exception
void PackBackup(const std::string& backup);

/// Removes all working files that there are. What cannot be removed is left, with a line in the log.
void RemoveWorkingFiles();
