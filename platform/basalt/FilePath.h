#pragma once

#include "basalt/FileFacts.h"

#include <string>
#include <system_error>

// What is asked and done by path. A path is UTF-8 on every system and has "/" between its names; Windows
// knows "\" too. Links are symbolic links, and what else leads to another place on Windows.

/// What a path leads to, through links. @return the reason when that cannot be found out
[[nodiscard]] std::error_code AskPath(const std::string& path, FileFacts* facts);
/// What has the name: a link itself. @return the reason when that cannot be found out
[[nodiscard]] std::error_code AskPathItself(const std::string& path, FileFacts* facts);
/// Whether two paths lead to the same file or folder; false when either leads to none.
[[nodiscard]] bool LeadToTheSame(const std::string& one, const std::string& other);

/// The folder that a path's last name lies in; "." for a bare name.
[[nodiscard]] std::string FolderOf(const std::string& path);
/// A path's last name; empty when it ends with a separator.
[[nodiscard]] std::string NameOf(const std::string& path);
/// The path from the root on, without "." and ".."; links stay.
[[nodiscard]] std::string AbsolutePath(const std::string& path);
/// The path from the root on to what exists there, without links; empty when there is nothing.
[[nodiscard]] std::string RealPath(const std::string& path);
/// The file that a name leads to: the far end of a chain of links, whether or not it exists yet.
[[nodiscard]] std::string LinksFollowed(const std::string& path);

/// Gives a file or a folder another path in the same file system, atomically. A file takes the place of one
/// that has it.
[[nodiscard]] std::error_code MovePath(const std::string& target, const std::string& from);
/// Has two paths lead to what the other one led to, in one step. @return the reason where the file system
/// cannot do that
[[nodiscard]] std::error_code ExchangePaths(const std::string& one, const std::string& other);
/// The permissions of a new folder that anybody may enter whom the process's mask does not keep out.
constexpr unsigned kOpenFolder = 0777;
/// Makes one folder. @return file_exists when the name is taken
[[nodiscard]] std::error_code MakeFolderAt(const std::string& path, unsigned permissions = kOpenFolder);
[[nodiscard]] std::error_code RemoveFileAt(const std::string& path);
/// Removes a folder with everything in it. Links are removed and never followed, `path` included.
[[nodiscard]] std::error_code RemoveTreeAt(const std::string& path);
