#include "basalt/ProcessStart.h"

#include <csignal>

std::vector<std::string> CommandLineWords(int count, char** words) {
    return {words + (count > 0 ? 1 : 0), words + count};
}

std::vector<int> StopSignals() {
    return {SIGINT, SIGTERM};
}
