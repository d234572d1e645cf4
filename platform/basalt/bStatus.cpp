#include "basalt/bStatus.h"

#include <array>
#include <cstdio>

const char* bStatus_Name(bStatus status) {
    switch (status) {
    case bOK:
        return "OK";
    case bERROR_MEMORY:
        return "ERROR_MEMORY";
    case bERROR_PARAMETER:
        return "ERROR_PARAMETER";
    case bERROR_FORMAT:
        return "ERROR_FORMAT";
    case bERROR_END:
        return "ERROR_END";
    case bERROR_TOO_LONG:
        return "ERROR_TOO_LONG";
    case bERROR_LIMIT:
        return "ERROR_LIMIT";
    case bERROR_TRACK:
        return "ERROR_TRACK";
    case bERROR_NOT_CONNECTED:
        return "ERROR_NOT_CONNECTED";
    case bERROR_TIMEOUT:
        return "ERROR_TIMEOUT";
    case bERROR_CONNECTION:
        return "ERROR_CONNECTION";
    case bERROR_REFUSED:
        return "ERROR_REFUSED";
    case bERROR_FILE:
        return "ERROR_FILE";
    case bERROR_REQUEST:
        return "ERROR_REQUEST";
    case bERROR_NOT_FOUND:
        return "ERROR_NOT_FOUND";
    default:
        thread_local std::array<char, 32> unnamed;
        std::snprintf(unnamed.data(), unnamed.size(), "STATUS %d", status);
        return unnamed.data();
    }
}
