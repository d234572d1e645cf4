#include "basalt/StandardStreams.h"

#include <csignal>

std::FILE* OpenToAppend(const std::string& path) {
    return std::fopen(path.c_str(), "ae");
}

void IgnoreBrokenPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

/// They do so anyway.
void KeepBytesOfOutput() {
}
