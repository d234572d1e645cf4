#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>

/// False under a sanitizer, whose own memory hides that of the program.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsMeasurable = false;
#else
constexpr bool kMemoryIsMeasurable = true;
#endif

/// A memory field of a process's status as the kernel reports it ("VmRSS" now, "VmHWM" at its peak), in
/// bytes; 0 when there is none.
std::uint64_t MemoryOf(pid_t process, const std::string& field);

/// The growth of this process's memory from the construction of the object to its peak since then.
class PeakMemory {
  public:
    PeakMemory();
    /// In bytes.
    [[nodiscard]] std::uint64_t Growth() const;

  private:
    std::uint64_t before = 0;
};
