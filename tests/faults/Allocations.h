#pragma once

/// Starts counting the allocations of this process, and makes number `failing` (from 1; 0 for none) fail. The
/// C library's functions are replaced, through which all other allocation functions go.
void CountAllocations(long failing);
/// Stops counting. @return the number of allocations
long StopCountingAllocations();
