#pragma once

#include "basalt/bObject.h"
#include "cinder/TarName.h"

#include <string>

/// Packs everything below `sourceDirectory` into the tar archive `tarFileName`. The archive appears under its
/// name atomically: after a failure, or a kill at any moment, an old one is unchanged.
/// @param sourceDirectory without "/" at its end
/// @throws Ve::Exception with the function "TarCompress"
void TarCompress(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator);

/// Unpacks the tar archive `tarFileName` into `targetDirectory`, which is emptied first. A hard link to an
/// entry of the archive becomes a copy of it; other entries that are neither file nor directory are omitted
/// and named in the log at INFO; an entry that would be placed outside is a failure. Of a damaged archive
/// everything before the damage is unpacked, without a failure but with a line in the log.
/// @throws Ve::Exception with the function "TarUncompress"; what was unpacked before remains
void TarUncompress(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator);

/// The same. @return what was omitted
LeftOut TarUncompressReporting(const std::string& tarFileName, const std::string& targetDirectory,
                               bAlloc allocator);
