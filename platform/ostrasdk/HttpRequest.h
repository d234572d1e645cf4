#pragma once

#include "basalt/bIpAddress.h"
#include "wire/VeJson.h"

#include <string>

namespace OstraSdk {

enum class HttpVerb { Get, Post, Put };

/// Everything that one request needs, independent of the object that it was asked of.
struct HttpRequest {
    bIpAddress address;
    unsigned int port = 0;
    HttpVerb verb = HttpVerb::Get;
    std::string path;  ///< begins with "/"; no blanks or control characters
    VeJson body;       ///< empty for none
    std::string token; ///< empty for none
};

} // namespace OstraSdk
