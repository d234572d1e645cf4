#pragma once

#include <map>
#include <string>

/// Every file of a folder by its name in it, with its content; a directory ends in "/", and a link shows as
/// "-> " and its target.
std::map<std::string, std::string> FolderTree(const std::string& folder);

/// Runs a shell command and gives what it prints on both outputs, and "exit N" when it fails.
std::string RunTool(const std::string& command);
