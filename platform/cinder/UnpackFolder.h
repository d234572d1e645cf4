#pragma once

#include "basalt/bFile.h"
#include "basalt/bObject.h"
#include "basalt/bStatus.h"
#include "cinder/TarName.h"

#include <cstdint>
#include <string>

/// How an archive was unpacked.
struct Unpacking {
    bStatus end = bERROR_END; ///< how it ended: bERROR_END regularly; another status when it is damaged after
                              ///< the entries that were unpacked (see bTar_BeginRead)
    std::string reason;       ///< of an end that is not regular
    LeftOut leftOut;          ///< the links and special files in it
    std::int64_t files = 0;   ///< the folder's content now: its files,
    std::int64_t folders = 0; ///< its folders
    std::int64_t bytes = 0;   ///< and the files' bytes
};

/// Unpacks a tar archive into a fresh folder that only its owner may enter: its old content is deleted first.
/// Files and folders get the archive's permissions, as far as UsablePermissions allows, and its times. A hard
/// link to an earlier entry becomes a copy of it; other links and special files are omitted. An entry that
/// would be placed outside the folder is refused before anything of it is written, and no link is followed. A
/// file that cannot be read completely is removed. Memory use does not depend on the size.
/// @throws Ve::Exception: the step that failed and its status, an archive that cannot be read on or has too
///         many entries among them; what was unpacked before remains
Unpacking UnpackFolder(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator);

/// The same, but an archive that does not end regularly is a failure too: a truncated or damaged archive,
/// even if only its end mark is missing, is never treated as complete.
/// @throws Ve::Exception as above; "The archive is damaged - " and its name with the status
void UnpackFolderStrictly(const std::string& tarFileName, const std::string& targetDirectory,
                          bAlloc allocator);

/// The strict form for an archive that is open for reading. Links of any kind and special files are a failure
/// here: replacing a tree must not silently lose a part of it.
/// @throws Ve::Exception as above; "The archive is damaged." with the status, "The archive holds links or
///         special files." with bERROR_FORMAT
Unpacking UnpackFolderStrictly(bFile* archive, const std::string& targetDirectory, bAlloc allocator);
