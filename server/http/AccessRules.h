#pragma once

#include "server/http/Request.h"

#include <string>
#include <vector>

/// Decides which requests are accepted: those of editors, but not those of a web page that uses its visitor's
/// browser to reach the server. Such a page may be served under a host name that resolves to this machine
/// (DNS rebinding), but its requests carry that name, and the Origin that the browser adds.
class AccessRules final {
  public:
    /// @param hostNames the names by which clients may address this server, in addition to its addresses
    /// @param token the secret that every request must carry; empty for none
    AccessRules(std::vector<std::string> hostNames, std::string token)
        : hostNames(std::move(hostNames)), token(std::move(token)) {}

    /// @throws HttpError: 400 without a host; 401 without the token; 403 for an unknown host name and for a
    ///         request from a web page; 501 for an unknown transfer coding
    void Check(const Request& request) const;

  private:
    [[nodiscard]] bool IsHost(const std::string& host) const;

    std::vector<std::string> hostNames;
    std::string token;
};
