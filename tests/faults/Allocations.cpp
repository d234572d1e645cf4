#include "Allocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// The C library's own functions, under the names that a program does not replace.
extern "C" {
void* __libc_malloc(std::size_t size);                    // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);     // NOLINT(bugprone-reserved-identifier)
}

namespace {

std::atomic<bool> counting{false};
std::atomic<long> count{0};
std::atomic<long> failure{0};

/// A separate function, for a breakpoint.
[[gnu::noinline]] bool NoMemory() {
    errno = ENOMEM;
    return true;
}

bool Fails() {
    return counting && ++count == failure && NoMemory();
}

} // namespace

extern "C" void* malloc(std::size_t size) {
    return Fails() ? nullptr : __libc_malloc(size);
}

extern "C" void* calloc(std::size_t number, std::size_t size) {
    return Fails() ? nullptr : __libc_calloc(number, size);
}

extern "C" void* realloc(void* memory, std::size_t size) {
    return Fails() ? nullptr : __libc_realloc(memory, size);
}

void CountAllocations(long failing) {
    count = 0;
    failure = failing;
    counting = true;
}

long StopCountingAllocations() {
    counting = false;
    return count;
}
