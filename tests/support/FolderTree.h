#pragma once

#include <filesystem>
#include <map>
#include <string>

/// A path of the standard library in UTF-8, with slashes.
std::string Utf8Text(const std::filesystem::path& path);

/// Every file of a folder by its relative name, with its content; a directory ends in "/", and a link is
/// "-> " and its target.
std::map<std::string, std::string> FolderTree(const std::string& folder);
