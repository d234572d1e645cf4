#pragma once

#include "basalt/bIpAddress.h"
#include "ostrasdk/VeTransaction.h"

#include <string>

namespace OstraSdk {

/// Makes requests to one server. Each has a connection of its own, so that a server that was restarted, or a
/// connection that died between two requests, is no matter. Each brings the token in the file that the
/// environment variable OSTRA_TOKEN_FILE names, if it names one; a file that has none throws Ve::Exception
/// (see ReadAccessToken).
class VeRestClient {
  public:
    VeRestClient(const bIpAddress& address, unsigned int port) : address(address), port(port) {}

    /// A command (POST).
    /// @param path begins with "/"
    /// @param body empty for none
    /// @param extra has no use yet and must be empty; anything else throws Ve::Exception (bERROR_PARAMETER)
    [[nodiscard]] VeTransaction Call(const std::string& path, const VeJson& body, const VeJson& extra) const;
    /// Reads a value (GET).
    [[nodiscard]] VeTransaction Read(const std::string& path, const VeJson& body, const VeJson& extra) const;
    /// Writes a value (PUT).
    [[nodiscard]] VeTransaction Update(const std::string& path, const VeJson& body,
                                       const VeJson& extra) const;

  private:
    [[nodiscard]] VeTransaction Request(HttpVerb verb, const std::string& path, const VeJson& body,
                                        const VeJson& extra) const;

    bIpAddress address;
    unsigned int port;
};

} // namespace OstraSdk
