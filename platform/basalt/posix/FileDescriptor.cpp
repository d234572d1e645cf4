#include "basalt/FileDescriptor.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <unistd.h>

bool FileDescriptor::Close() {
    const int closing = Release();
    return closing < 0 || close(closing) == 0;
}

bool WaitForSocket(std::uintptr_t socket, SocketWait wait, std::chrono::steady_clock::time_point end) {
    using Milliseconds = std::chrono::duration<std::int64_t, std::milli>;
    constexpr Milliseconds kMaxStep = std::chrono::hours(1);
    pollfd polled{static_cast<int>(socket), 0, 0};
    polled.events = static_cast<short>((wait.input ? POLLIN : 0) | (wait.output ? POLLOUT : 0));
    for (;;) {
        const auto now = std::chrono::steady_clock::now();
        const Milliseconds left = now >= end             ? Milliseconds(0)
                                  : end - now > kMaxStep ? kMaxStep
                                                         : std::chrono::ceil<Milliseconds>(end - now);
        const int ready = poll(&polled, 1, static_cast<int>(left.count()));
        if (ready > 0 || (ready < 0 && errno != EINTR)) // a failure shows in the call that follows
            return true;
        if (ready == 0 && left < kMaxStep)
            return false;
    }
}
