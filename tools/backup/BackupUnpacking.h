#pragma once

#include "tools/commandline/Progress.h"

#include <string>

/// Unpacks an archive into a folder that does not exist yet. Nothing damaged is taken for complete, and an
/// archive with links or special files is refused.
/// @throws Failure with ExitCode::Unreadable; what was unpacked before stays
void UnpackInto(const std::string& archive, const std::string& folder, Progress& progress);

/// Packs a folder into an archive, which appears at once.
/// @throws Failure with ExitCode::Unwritable
void PackFrom(const std::string& folder, const std::string& archive);
