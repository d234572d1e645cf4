#include "tools/commandline/Progress.h"

#include "basalt/SystemCalls.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::chrono::milliseconds kDelay{300};
constexpr std::chrono::milliseconds kInterval{100};

} // namespace

Progress::Progress(std::string what)
    : what(std::move(what)), isShown(IsTerminal(stderr)), next(std::chrono::steady_clock::now() + kDelay) {
}

void Progress::Begin(std::string part) {
    what = std::move(part);
    Update(0, 0);
}

void Progress::Update(std::int64_t done, std::int64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (!isShown || now < next)
        return;
    next = now + kInterval;
    std::string line = what;
    if (total > 0)
        line += "  " + std::to_string(std::min<std::int64_t>(100, done * 100 / total)) + " %";
    std::fprintf(stderr, "\r\033[K%s", line.c_str());
    std::fflush(stderr);
    hasLine = true;
}

void Progress::Clear() {
    if (!hasLine)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    hasLine = false;
}
