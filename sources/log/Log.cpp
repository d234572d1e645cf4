#include "log/Log.h"

#include <array>

const char* LogLevelName(LogLevel level) {
    static constexpr std::array<const char*, 8> kNames = {"ERROR",  "WARNING", "INFO",   "DEBUG",
                                                          "DEBUG1", "DEBUG2",  "DEBUG3", "DEBUG4"};
    return kNames.at(level);
}
