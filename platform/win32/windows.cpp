#include "windows.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

errno_t fopen_s(std::FILE** file, const char* name, const char* mode) {
    if (file == nullptr)
        return EINVAL;
    *file = nullptr;
    if (name == nullptr || mode == nullptr)
        return EINVAL;
    *file = std::fopen(name, (std::string(mode) + 'e').c_str());
    return *file == nullptr ? errno : 0;
}

DWORD GetTickCount() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto milliseconds =
        static_cast<std::uint64_t>(now.tv_sec) * 1000U + static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000U;
    return static_cast<DWORD>(milliseconds);
}

int GetTimeFormatA(LCID /*locale*/, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text,
                   int capacity) {
    if (flags != 0 || time != nullptr || capacity <= 0 || std::strcmp(format, "HH':'mm':'ss") != 0)
        return 0;
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr)
        return 0;
    const std::size_t written = std::strftime(text, static_cast<std::size_t>(capacity), "%H:%M:%S", &local);
    return written == 0 ? 0 : static_cast<int>(written) + 1;
}
