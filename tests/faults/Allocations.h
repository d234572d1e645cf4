#pragma once

/// From now on every allocation of this process is counted, and number `failing` (from 1; 0 for none) gets no
/// memory. Whatever allocates is meant: the C library's calls are replaced, and all others go through them.
void CountAllocations(long failing);
/// Ends that. @return how many there were
long StopCountingAllocations();
