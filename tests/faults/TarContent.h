#pragma once

#include <map>
#include <string>

/// The regular files in a tar archive by name, read by a reader that shares nothing with the editor's.
/// @throws std::runtime_error for anything but a whole archive of files and directories with short names:
/// sums of headers are checked, and two blocks of zeros must stand at the end
std::map<std::string, std::string> TarContent(const std::string& archive);
