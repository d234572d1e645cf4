#pragma once

#include "IndependentTrack.h"

#include <map>
#include <string>
#include <vector>

/// Names below the folder at hand, and what the files hold.
using FileTree = std::map<std::string, std::string>;
/// What is wrong; empty when nothing is.
using Problems = std::vector<std::string>;

/// A track with one path of three points, and the track as it is when its first segment has got the
/// length 33.
independent::Track OperatorTrack(int width, int height);
bool IsEdited(const std::string& file, const independent::Track& original);

/// The workspace archive's and the backup's bytes, made without the editor.
std::string WorkspaceArchive(const FileTree& tracks);
std::string BackupArchive(const FileTree& tracks);
/// The tracks in a backup, by the independent reader. @throws std::runtime_error for a broken one
FileTree TracksInBackup(const std::string& backup);
FileTree TracksInWorkspace(const std::string& archive);

/// Creates the folders that are missing, too.
void WriteTree(const FileTree& files);
/// The regular files directly in a folder; empty when there is none.
FileTree FilesIn(const std::string& folder);

/// Whether a file of this name would be taken for a track or a backup.
bool LooksLikeContent(const std::string& name);
