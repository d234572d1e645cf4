#pragma once

#include <string>

/// A sensor server that discovery found.
struct OstraServerInfo {
    std::string address;          ///< dotted IPv4, as bIpAddress_Format writes it
    unsigned int controlPort = 0; ///< TCP port of its requests, as its answer gives it
};
