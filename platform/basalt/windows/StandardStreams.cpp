#include "basalt/SystemCalls.h"

#include "basalt/windows/WideText.h"

#include <cerrno>

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
