#pragma once

#include <string>
#include <system_error>

/// Copies a file byte for byte, as AtomicFile writes.
/// @return the reason when that failed: resource_unavailable_try_again for a file that was changed meanwhile;
///         the target is as it was then, but for a failed sync of its folder
[[nodiscard]] std::error_code CopyAtomically(const std::string& from, const std::string& target);

/// Puts the finished file `from` in the place of the existing file `target`, atomically: by renaming where
/// both are in one file system and belong to one owner and group, else by a copy (`from` then stays).
/// The target keeps its permissions, its owner and its group as AtomicFile does, and a link stays a link.
/// @return the reason when `target` cannot be written; it is as it was then, but for a failed sync of its
///         folder, where it has the new content
[[nodiscard]] std::error_code ReplaceAtomically(const std::string& from, const std::string& target);
