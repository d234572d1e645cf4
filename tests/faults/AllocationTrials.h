#pragma once

#include <string>
#include <vector>

/// The operations whose allocations fail one after the other: their names.
std::vector<std::string> AllocationScenarios();

/// What came out of one of them.
struct AllocationResult {
    long failed = 0; ///< allocations that were made to fail
    long exits = 0;  ///< of these, where the archive library ended the process by its own design
    int problems = 0;
};

/// Runs an operation on a small file in `folder`, which is empty, again and again, each time in a process of
/// its own; the first time its first allocation fails, then its second, until it meets none that fails. Each
/// time it has to end well or with an error of its own, leave whole files, and work when it is done again.
/// Where the archive library ends the process, the files have to be whole, and the next start has to work.
/// @param step 1 for every allocation; more leaves some out, but none of the first 100
AllocationResult RunAllocations(const std::string& scenario, const std::string& folder, long step);
