#include "WatchedServer.h"

#include <cstdlib>
#include <filesystem>

OstraServerProcess StartWatched(const std::string& preload) {
    const std::string here = std::filesystem::current_path();
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv("CORVANE_FAULT_ROOT", (here + "/" + kServerFolder).c_str(), 1);
    setenv("CORVANE_FAULT_REPORT", (here + "/report").c_str(), 1);
    return OstraServerProcess(kServedFolder);
}
