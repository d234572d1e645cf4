#pragma once

#include <array>
#include <atomic>

// The calls by which a process changes files, or those by which it reads them, seen where they enter the
// kernel: whatever a library does inside, nothing goes past the filter, and what is counted here is what a
// system-call tracer shows.

/// What happens to one of the calls.
enum class Fault : int {
    None,
    NoSpace,     ///< ENOSPC, once
    Quota,       ///< EDQUOT, once
    InputOutput, ///< EIO, once
    DiskDead,    ///< EIO for this call and for every later one
    DiskFull,    ///< ENOSPC for this call and for every later one that needs room
    Short,       ///< a write takes half of its bytes and says so
    ShortFull,   ///< a write takes half of its bytes; after that the disk is full
    Kill,        ///< the process is killed before the call
    TornKill,    ///< a write takes half of its bytes, and the process is killed
};

/// One call that was counted.
struct FileCall {
    long number = 0; ///< of the system call
    std::array<char, 16> name{};
    std::array<char, 64> place{}; ///< the file's own name, cut to what fits
    long size = 0;                ///< the bytes that are asked for, of a call that reads or writes
};

/// Memory that the watched process and whoever watches it share.
struct FileCallReport {
    static constexpr long kMostCalls = 2000;

    std::atomic<bool> armed{false}; ///< calls are counted while it is set
    bool reads = false;             ///< the calls that read are meant, not those that change
    bool noExchange = false;        ///< the file system does not know how to exchange two names
    Fault fault = Fault::None;
    long at = 0;                       ///< the call that is meant, from 1
    std::atomic<long> count{0};        ///< calls so far
    std::atomic<bool> injected{false}; ///< the fault has happened
    std::array<FileCall, kMostCalls> calls{};
};

/// A report in a file, so that two processes see the same one. The file is made when it is not there.
/// @return null when that is not possible
FileCallReport* MapReport(const char* path);

/// From now on the calls of this process that change (or read) something below `root` (an absolute path
/// without links) go through the report. For good: nothing takes the filter away again. Call it while there
/// is one thread.
/// @return false when the system does not allow it
[[nodiscard]] bool WatchFileCalls(const char* root, FileCallReport* report);
