#include "log/Log.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include <windows.h>

std::string NowTime() {
    char time[200];
    if (GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "HH':'mm':'ss", time, sizeof time) == 0)
        return "Error in NowTime()";

    static const DWORD first = GetTickCount();
    const auto elapsed = static_cast<std::int32_t>(GetTickCount() - first);

    char stamp[100] = {};
    std::snprintf(stamp, sizeof stamp, "%.80s.%03ld", time, static_cast<long>(elapsed % 1000));
    return stamp;
}

std::FILE*& Output2FILE::Target() {
    static std::FILE* target = stderr;
    return target;
}

void Output2FILE::Write(const std::string& text) {
    std::FILE* const target = Target();
    if (target == nullptr)
        return;
    std::fprintf(target, "%s", text.c_str());
    std::fflush(target);
}

const char* LogLevelName(LogLevel level) {
    static constexpr std::array<const char*, 8> kNames = {"ERROR",  "WARNING", "INFO",   "DEBUG",
                                                          "DEBUG1", "DEBUG2",  "DEBUG3", "DEBUG4"};
    return kNames.at(level);
}
