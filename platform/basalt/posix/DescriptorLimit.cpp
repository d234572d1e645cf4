#include "basalt/DescriptorLimit.h"

#include <algorithm>

#include <sys/resource.h>

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
