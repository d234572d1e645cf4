#pragma once

#include "server/http/Request.h"

#include <string>
#include <vector>

/// Who may ask: the server is meant for editors, and a web page on a machine of the network must not reach it
/// through its visitor's browser. A page can be served under a name that is made to point at this machine;
/// what its requests cannot hide is that name, and the origin that the browser adds.
class AccessRules final {
  public:
    /// @param hostNames the names under which clients may address this server, beside its addresses
    /// @param token the secret that every request has to bring; empty for none
    AccessRules(std::vector<std::string> hostNames, std::string token)
        : hostNames(std::move(hostNames)), token(std::move(token)) {}

    /// @throws HttpError: 400 without a host; 401 without the token; 403 for another host name and for a
    ///         request of a web page; 501 for a transfer coding that is unknown
    void Check(const Request& request) const;

  private:
    [[nodiscard]] bool IsHost(const std::string& host) const;

    std::vector<std::string> hostNames;
    std::string token;
};
