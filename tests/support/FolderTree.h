#pragma once

#include <map>
#include <string>

/// Every file of a folder by its relative name, with its content; a directory ends in "/", and a link is
/// "-> " and its target.
std::map<std::string, std::string> FolderTree(const std::string& folder);
