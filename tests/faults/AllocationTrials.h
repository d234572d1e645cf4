#pragma once

#include <string>
#include <vector>

/// The names of the operations whose allocations are made to fail.
std::vector<std::string> AllocationScenarios();

/// The result of one of them.
struct AllocationResult {
    long failed = 0; ///< allocations that were made to fail
    long exits = 0;  ///< of these, how often the archive library ended the process, as it does by design
    int problems = 0;
};

/// Repeats an operation on a small file in the empty `folder`, each time in a new process: in run n the nth
/// allocation fails, until a run needs fewer. Each time the operation must succeed or report an error, leave
/// complete files, and succeed when repeated. Where the archive library ends the process, the files must be
/// complete and the next start must work.
/// @param step 1 tests every allocation; n tests the first 100 and then every nth
AllocationResult RunAllocations(const std::string& scenario, const std::string& folder, long step);
