#include "FakeClock.h"

#include "log/Log.h"

#include <cstring>

#include <windows.h>

namespace fakeClock {

std::uint32_t ticks = kStart;
bool fails = false;
const char* const kTime = "14:03:07";

void Begin() {
    static const bool begun = [] {
        fails = true;
        ticks = kStart - 700;
        NowTime();
        fails = false;
        ticks = kStart;
        NowTime();
        return true;
    }();
    ticks = begun ? kStart : 0;
}

} // namespace fakeClock

DWORD GetTickCount() {
    return fakeClock::ticks;
}

int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text,
                   int capacity) {
    const bool asked = locale == 0x400 && flags == 0 && time == nullptr && capacity == 200 &&
                       std::strcmp(format, "HH':'mm':'ss") == 0;
    if (fakeClock::fails || !asked)
        return 0;
    std::strcpy(text, fakeClock::kTime);
    return 9;
}
