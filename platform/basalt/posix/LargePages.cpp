#include "basalt/LargePages.h"

#include <sys/mman.h>
#include <unistd.h>

void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size) {
    constexpr std::size_t kLarge = std::size_t{8} * 1024 * 1024;
    bytes.reserve(size);
    if (bytes.capacity() < kLarge)
        return;
    // The wish is for whole pages; what shares the first and the last one with other data goes without.
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t before = (page - reinterpret_cast<std::uintptr_t>(bytes.data()) % page) % page;
    const std::uintptr_t whole = (bytes.capacity() - before) / page * page;
    madvise(bytes.data() + before, whole, MADV_HUGEPAGE); // a system without them goes on with small ones
}
