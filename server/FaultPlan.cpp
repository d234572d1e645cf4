#include "server/FaultPlan.h"

#include <utility>

FaultPlan::FaultPlan(FaultOptions options) : options(std::move(options)) {
}

Fault FaultPlan::Next(const std::string& path) {
    if (!options.path.empty() && options.path != path)
        return {};
    const std::lock_guard lock(mutex);
    const std::uint64_t number = seen++;
    const bool suffers = number >= options.skip && (!options.count || number - options.skip < *options.count);
    return suffers ? options.fault : Fault{};
}
