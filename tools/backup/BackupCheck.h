#pragma once

#include "tools/commandline/Progress.h"
#include "tools/track/TrackCheck.h"

#include <functional>
#include <string>

/// Something in a backup that is not as it should be.
struct BackupProblem {
    std::string entry; ///< empty for the backup as a whole
    TrackProblem problem;
};

/// What a check has gone through.
struct BackupCounts {
    std::int64_t files = 0; ///< of the workspace
    std::int64_t tracks = 0;
};

/// Reads a backup to its end, unpacks it into a temporary folder, and reports what would keep the editor from
/// working with it: damage, files that are not unpacked, a missing workspace, and tracks with errors.
/// @throws Failure: Unreadable when there is no such file; Unwritable for the temporary folder
BackupCounts CheckBackup(const std::string& backup, Progress& progress,
                         const std::function<void(const BackupProblem& problem)>& sink);
