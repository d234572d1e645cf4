#pragma once

#include "basalt/bAlloc.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"

#include <string>

/// Unpacks a tar archive into a fresh folder: whatever stood in it is deleted first. Files and directories
/// are unpacked, with the archive's permissions within 0777 and the process's mask; links and special files
/// are passed over. An entry that would land outside the folder is refused before anything of it is written,
/// and no link is followed. A file that cannot be read whole is not left behind. Uses the same memory for any
/// size.
/// @return how the archive ended: bERROR_END regularly; another status when it is damaged after the entries
///         that were unpacked (see bTar_BeginRead)
/// @throws Ve::Exception: the step that failed and its status, an archive that cannot be read on or has too
///         many entries among them; what was unpacked before stays
bStatus UnpackFolder(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator);

/// The same, but an archive that does not end regularly is a failure too: nothing that is cut or damaged,
/// were it only its end mark, is taken for whole.
/// @throws Ve::Exception as above; "The archive is damaged - " and its name with the status
void UnpackFolderStrictly(const std::string& tarFileName, const std::string& targetDirectory,
                          bAlloc allocator);

/// The strict form for an archive that is open for reading. Links and special files are a failure here: who
/// replaces a whole tree must not lose a part of it unnoticed.
/// @throws Ve::Exception as above; "The archive is damaged." with the status, "The archive holds links or
/// special
///         files." with bERROR_FORMAT
void UnpackFolderStrictly(bFile* archive, const std::string& targetDirectory, bAlloc allocator);
