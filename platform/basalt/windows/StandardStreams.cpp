#include "basalt/SystemCalls.h"

#include "basalt/windows/WideText.h"

#include <cerrno>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

std::FILE* OpenToAppend(const std::string& path) {
    const std::optional<std::wstring> wide = LongPathOf(path);
    if (wide)
        return _wfopen(wide->c_str(), L"abN");
    errno = EINVAL;
    return nullptr;
}

/// They are failures here anyway.
void IgnoreBrokenPipes() {
}

void KeepBytesOfOutput() {
    for (std::FILE* const stream : {stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
}

/// Other devices, such as the null device, are terminals only to the C library. A console prints escape
/// sequences as text unless its mode says otherwise.
bool IsTerminal(std::FILE* output) {
    auto* const handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(output)));
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode) == FALSE)
        return false;
    SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    return true;
}
