#include "server/ReplayMode.h"

ReplayMode::ReplayMode(bool enabled, std::optional<bool> afterRestore)
    : enabled(enabled), afterRestore(afterRestore) {
}

void ReplayMode::Restored(std::optional<bool> archived) {
    if (afterRestore)
        enabled = *afterRestore;
    else if (archived)
        enabled = *archived;
}
