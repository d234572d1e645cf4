#include "basalt/FileDescriptor.h"

#include <algorithm>

#include <winsock2.h>

bool WaitForSocket(std::uintptr_t socket, SocketWait wait, std::chrono::steady_clock::time_point end) {
    using Milliseconds = std::chrono::duration<std::int64_t, std::milli>;
    constexpr Milliseconds kMaxStep = std::chrono::hours(1);
    WSAPOLLFD polled{socket, 0, 0};
    polled.events = static_cast<SHORT>((wait.input ? POLLIN : 0) | (wait.output ? POLLOUT : 0));
    for (;;) {
        const auto now = std::chrono::steady_clock::now();
        const Milliseconds left = now >= end             ? Milliseconds(0)
                                  : end - now > kMaxStep ? kMaxStep
                                                         : std::chrono::ceil<Milliseconds>(end - now);
        const int ready = WSAPoll(&polled, 1, static_cast<int>(left.count()));
        if (ready != 0) // a failure shows in the call that is waited for
            return true;
        if (left < kMaxStep)
            return false;
    }
}
