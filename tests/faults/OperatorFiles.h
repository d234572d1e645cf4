#pragma once

#include "IndependentTrack.h"

#include <map>
#include <string>
#include <vector>

/// Files by their path relative to some folder, with their content.
using FileTree = std::map<std::string, std::string>;
/// The problems found; empty when there are none.
using Problems = std::vector<std::string>;

/// A track with one path of three points; IsEdited checks that only its first segment's length has become 33.
independent::Track OperatorTrack(int width, int height);
bool IsEdited(const std::string& file, const independent::Track& original);

/// The bytes of a workspace archive and of a backup, made without the editor's code.
std::string WorkspaceArchive(const FileTree& tracks);
std::string BackupArchive(const FileTree& tracks);
/// The tracks in a backup, by the independent reader. @throws std::runtime_error for a broken one
FileTree TracksInBackup(const std::string& backup);
FileTree TracksInWorkspace(const std::string& archive);

/// The same files in a folder, whose path ends with "/".
FileTree InFolder(const std::string& folder, const FileTree& files);
/// Writes the files and creates missing folders.
void WriteTree(const FileTree& files);
/// The regular files directly in a folder; empty when the folder does not exist.
FileTree FilesIn(const std::string& folder);

/// Whether a file with this name would be treated as a track or a backup.
bool LooksLikeContent(const std::string& name);
