#pragma once

#include "tools/commandline/Progress.h"
#include "tools/track/TrackCheck.h"

#include <functional>
#include <string>

/// A defect of a backup.
struct BackupProblem {
    std::string entry; ///< empty for a problem of the backup itself
    TrackProblem problem;
};

/// What a check has covered.
struct BackupCounts {
    std::int64_t files = 0; ///< of the workspace
    std::int64_t tracks = 0;
};

/// Reads a backup to its end, unpacks it into a temporary folder, and reports what prevents the editor from
/// using it: damage, entries that cannot be unpacked, a missing workspace, and tracks with errors.
/// @throws Failure: Unreadable when the file cannot be opened; Unwritable for the temporary folder
BackupCounts CheckBackup(const std::string& backup, Progress& progress,
                         const std::function<void(const BackupProblem& problem)>& sink);
