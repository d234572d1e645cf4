#include "Figures.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <stdexcept>

namespace {

double SecondsOf(const timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double ClockSeconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return SecondsOf(time);
}

/// A line of the kernel's status of this process, such as "VmRSS:", in bytes.
double StatusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word)
        if (word == name && status >> kilobytes)
            return kilobytes * 1024.0;
    throw std::runtime_error("the system does not report " + name);
}

} // namespace

int NumberAt(const Arguments& arguments, std::size_t index) {
    return std::stoi(arguments.at(index));
}

double ProcessSeconds() {
    return ClockSeconds(CLOCK_PROCESS_CPUTIME_ID);
}

double ElapsedSeconds() {
    return ClockSeconds(CLOCK_MONOTONIC);
}

double SecondsOf(const std::function<void()>& work) {
    const double start = ProcessSeconds();
    work();
    return ProcessSeconds() - start;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

MemoryWatch::MemoryWatch() {
    std::ofstream("/proc/self/clear_refs") << 5; // resets the peak
    before = StatusBytes("VmRSS:");
}

double MemoryWatch::PeakBytes() const {
    return std::max(0.0, StatusBytes("VmHWM:") - before);
}
