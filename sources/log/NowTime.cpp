#include "log/NowTime.h"

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
