#include "basalt/SystemCalls.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kDecimal = 10;

locale_t PlainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace

std::size_t RaiseDescriptorLimit(std::size_t wanted) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 0;
    if (limit.rlim_cur >= wanted)
        return limit.rlim_cur;
    limit.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
    getrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_cur;
}

std::FILE* OpenToAppend(const std::string& path) {
    return std::fopen(path.c_str(), "ae");
}

void IgnoreBrokenPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

/// They always do here.
void KeepBytesOfOutput() {
}

bool IsTerminal(std::FILE* output) {
    return isatty(fileno(output)) != 0;
}

void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size) {
    constexpr std::size_t kLarge = std::size_t{8} * 1024 * 1024;
    bytes.reserve(size);
    if (bytes.capacity() < kLarge)
        return;
    // madvise takes complete pages; the bytes at either end that share a page with other data are left out.
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t before = (page - reinterpret_cast<std::uintptr_t>(bytes.data()) % page) % page;
    const std::uintptr_t pages = (bytes.capacity() - before) / page * page;
    madvise(bytes.data() + before, pages, MADV_HUGEPAGE); // systems without large pages use small ones
}

std::optional<std::tm> LocalTime(std::time_t moment) {
    std::tm local{};
    return localtime_r(&moment, &local) == nullptr ? std::nullopt : std::optional(local);
}

double PlainDouble(const char* text) {
    return strtod_l(text, nullptr, PlainLocale());
}

std::int64_t PlainInteger(const char* text) {
    return strtoll_l(text, nullptr, kDecimal, PlainLocale());
}
