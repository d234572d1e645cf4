#pragma once

#include "basalt/FileFacts.h"

#include <cerrno>
#include <system_error>

#include <sys/stat.h>

/// The error of the call that just failed.
inline std::error_code LastError() {
    return {errno, std::generic_category()};
}

/// The system's answer about a file or a folder.
FileFacts FactsOf(const struct stat& state);

/// Sets the permissions and the time of modification of an open file or folder, unless its file system has
/// none.
/// @return the reason when that failed
std::error_code Describe(int descriptor, const FileFacts& facts);

/// The kind that the type bits of a mode denote.
FileKind KindOf(mode_t mode);
