#include "ProcessMemory.h"

#include <fstream>

#include <unistd.h>

std::uint64_t MemoryOf(pid_t process, const std::string& field) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;)
        if (word == field + ":") {
            std::uint64_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    return 0;
}

PeakMemory::PeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5"; // resets the peak
    before = MemoryOf(getpid(), "VmRSS");
}

std::uint64_t PeakMemory::Growth() const {
    return MemoryOf(getpid(), "VmHWM") - before;
}
