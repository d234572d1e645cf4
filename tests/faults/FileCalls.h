#pragma once

#include <array>
#include <atomic>

// Counts the system calls by which a process changes files, or reads them, and injects faults. A seccomp
// filter catches them at the entry to the kernel, so calls from within libraries are counted too, as by a
// tracer.

/// What happens to one of the calls.
enum class Fault : int {
    None,
    NoSpace,     ///< ENOSPC, once
    Quota,       ///< EDQUOT, once
    InputOutput, ///< EIO, once
    DiskDead,    ///< EIO for this call and for every later one
    DiskFull,    ///< ENOSPC for this call and for every later one that needs space
    Short,       ///< a write takes half of its bytes and returns that
    ShortFull,   ///< a write takes half of its bytes; after that the disk is full
    Kill,        ///< the process is killed before the call
    TornKill,    ///< a write takes half of its bytes, and the process is killed
};

/// One call that was counted.
struct FileCall {
    long number = 0; ///< of the system call
    std::array<char, 16> name{};
    std::array<char, 64> place{}; ///< the file's own name, cut to what fits
    long size = 0;                ///< the bytes requested, for a call that reads or writes
};

/// Memory that the watched process and the harness share.
struct FileCallReport {
    static constexpr long kMaxCalls = 2000;

    std::atomic<bool> armed{false}; ///< calls are counted while it is set
    bool reads = false;             ///< watch the calls that read, not those that change
    bool noExchange = false;        ///< simulate a file system that cannot exchange two names
    Fault fault = Fault::None;
    long at = 0;                       ///< the call that gets the fault, from 1
    std::atomic<long> count{0};        ///< calls so far
    std::atomic<bool> injected{false}; ///< the fault has happened
    std::array<FileCall, kMaxCalls> calls{};
};

/// Maps a report file, which two processes can share. Creates the file if it does not exist.
/// @return null on failure
FileCallReport* MapReport(const char* path);

/// From now on the calls of this process that change (or read) files below `root` (an absolute path without
/// links) are reported. The filter cannot be removed. @pre the process has one thread
/// @return false when the system does not allow it
[[nodiscard]] bool WatchFileCalls(const char* root, FileCallReport* report);
