#pragma once

#include "basalt/bObject.h"

#include <string>

/// Packs everything below a folder into a tar archive: each directory's own entry, then its files, then its
/// directories, depth first, each kind in the order of the names' bytes; the folder itself gets no entry.
/// Symbolic links and special files are left out, so nothing outside the folder is ever packed. The archive
/// appears under its name whole or not at all; an old one stands until then. It uses the same memory for any
/// size of files.
/// @param sourceDirectory without "/" at its end
/// @throws Ve::Exception: not a directory (bERROR_FILE), or the step that failed and its status
void PackFolder(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator);
