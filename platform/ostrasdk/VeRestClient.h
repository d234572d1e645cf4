#pragma once

#include "basalt/bIpAddress.h"
#include "ostrasdk/VeTransaction.h"

#include <string>

namespace OstraSdk {

/// Makes requests to one server. Each request uses a new connection, so that a restarted server, or a
/// connection lost between two requests, does not matter. Each carries the token in the file named by the
/// environment variable OSTRA_TOKEN_FILE, if it is set; a file without a token throws Ve::Exception (see
/// ReadAccessToken).
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
