#include "WatchedServer.h"

#include <cstdlib>
#include <filesystem>

void WriteFolder(const std::string& folder, const FileTree& files) {
    FileTree placed;
    for (const auto& [name, content] : files)
        placed[folder + name] = content;
    WriteTree(placed);
}

OstraServerProcess StartWatched(const std::string& preload) {
    const std::string here = std::filesystem::current_path();
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv("CORVANE_FAULT_ROOT", (here + "/" + kServerFolder).c_str(), 1);
    setenv("CORVANE_FAULT_REPORT", (here + "/report").c_str(), 1);
    return OstraServerProcess(kServedFolder);
}
