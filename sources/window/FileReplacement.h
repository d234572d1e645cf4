#pragma once

#include <string>

/// Puts the finished file `from` in the place of the existing file `target`, whole or not at all: by renaming
/// where both are in one file system and belong to one user and group, else by a copy (`from` then stays).
/// The target keeps its permissions, its owner and its group as AtomicFile does, and a link stays a link.
/// @return false when `target` cannot be written; it then stands as it was, but for a failed sync of its
/// folder, where the new content does
[[nodiscard]] bool ReplaceFile(const std::string& from, const std::string& target);
