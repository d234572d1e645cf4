#pragma once

#include <map>
#include <string>

/// The regular files in a tar archive by name, read independently of the editor's code.
/// @throws std::runtime_error for anything but a complete archive of files and directories with short names:
/// header checksums are verified, and two zero blocks must end the archive
std::map<std::string, std::string> TarContent(const std::string& archive);
