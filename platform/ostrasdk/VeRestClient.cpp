#include "ostrasdk/VeRestClient.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/AccessToken.h"

#include <cstdlib>

namespace OstraSdk {

VeTransaction VeRestClient::Call(const std::string& path, const VeJson& body, const VeJson& extra) const {
    return Request(HttpVerb::Post, path, body, extra);
}

VeTransaction VeRestClient::Read(const std::string& path, const VeJson& body, const VeJson& extra) const {
    return Request(HttpVerb::Get, path, body, extra);
}

VeTransaction VeRestClient::Update(const std::string& path, const VeJson& body, const VeJson& extra) const {
    return Request(HttpVerb::Put, path, body, extra);
}

VeTransaction VeRestClient::Request(HttpVerb verb, const std::string& path, const VeJson& body,
                                    const VeJson& extra) const {
    if (!extra.IsEmpty())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_PARAMETER, "VeRestClient::Request",
                            "A request has nothing besides its body.");
    const char* const tokenFile = std::getenv("OSTRA_TOKEN_FILE");
    return VeTransaction(HttpRequest{address, port, verb, path, body,
                                     tokenFile == nullptr ? std::string() : ReadAccessToken(tokenFile)});
}

} // namespace OstraSdk
