#pragma once

#include "basalt/bObject.h"

#include <string>

/// Packs everything below a folder into a tar archive: each directory's own entry, then its files, then its
/// directories, depth first, each kind sorted by the bytes of the names; the folder itself gets no entry.
/// Symbolic links and special files are omitted, so nothing outside the folder is ever packed. The archive
/// replaces an old one atomically. Memory use does not depend on the size of files.
/// @param sourceDirectory without "/" at its end
/// @throws Ve::Exception: not a directory (bERROR_FILE), or the step that failed and its status
void PackFolder(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator);
