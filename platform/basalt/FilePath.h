#pragma once

#include "basalt/FileFacts.h"

#include <string>
#include <system_error>

// Queries and changes by path. A path is UTF-8 on every system and has "/" between its names; on Windows "\"
// too. Links are symbolic links, and on Windows other reparse points that redirect.

/// Facts of what a path refers to, through links. @return the reason when they cannot be read
[[nodiscard]] std::error_code AskPath(const std::string& path, FileFacts* facts);
/// The same without following a link as the last name. @return the reason when they cannot be read
[[nodiscard]] std::error_code AskPathItself(const std::string& path, FileFacts* facts);
/// Whether two paths refer to the same file or folder; false when either does not exist.
[[nodiscard]] bool LeadToTheSame(const std::string& one, const std::string& other);

/// The folder of a path's last name; "." for a bare name.
[[nodiscard]] std::string FolderOf(const std::string& path);
/// A path's last name; empty when it ends with a separator.
[[nodiscard]] std::string NameOf(const std::string& path);
/// The absolute path, without "." and ".."; links are kept.
[[nodiscard]] std::string AbsolutePath(const std::string& path);
/// The absolute path of an existing file or folder, with links resolved; empty when there is none.
[[nodiscard]] std::string RealPath(const std::string& path);
/// The end of a chain of links, whether or not it exists yet.
[[nodiscard]] std::string LinksFollowed(const std::string& path);

/// Gives a file or a folder another path in the same file system, atomically. An existing file of that path
/// is replaced.
[[nodiscard]] std::error_code MovePath(const std::string& target, const std::string& from);
/// Exchanges two paths atomically. @return the reason when the file system does not support that
[[nodiscard]] std::error_code ExchangePaths(const std::string& one, const std::string& other);
/// The permissions of a new folder for everybody, less the process's mask.
constexpr unsigned kOpenFolder = 0777;
/// Makes one folder. @return file_exists when the name is taken
[[nodiscard]] std::error_code MakeFolderAt(const std::string& path, unsigned permissions = kOpenFolder);
/// Makes a folder and those above it that are missing. @return file_exists when its name is taken
[[nodiscard]] std::error_code MakeFoldersAt(const std::string& path, unsigned permissions = kOpenFolder);
[[nodiscard]] std::error_code RemoveFileAt(const std::string& path);
/// Removes a folder with everything in it. Links are removed and never followed, `path` included.
[[nodiscard]] std::error_code RemoveTreeAt(const std::string& path);
