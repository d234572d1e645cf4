#pragma once

#include "basalt/bFile.h"
#include "tools/commandline/Progress.h"

#include <string>

/// Opens an archive for reading; each read updates the progress.
/// @param progress must outlive the file
/// @throws Failure with ExitCode::Unreadable
bOwned<bFile> OpenWithProgress(const std::string& file, Progress& progress);

/// Unpacks an archive into a folder that does not exist yet. A damaged archive, and one with links or special
/// files, is refused.
/// @throws Failure with ExitCode::Unreadable; what was unpacked until then remains
void UnpackInto(const std::string& archive, const std::string& folder, Progress& progress);

/// Packs a folder into an archive, which is written atomically.
/// @throws Failure with ExitCode::Unwritable
void PackFrom(const std::string& folder, const std::string& archive);
