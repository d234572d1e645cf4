#pragma once

#include "basalt/bIpAddress.h"
#include "wire/VeJson.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace OstraSdk {

enum class HttpVerb { Get, Post, Put };

/// Everything that one request needs, independent of the object that made it.
struct HttpRequest {
    bIpAddress address;
    unsigned int port = 0;
    HttpVerb verb = HttpVerb::Get;
    std::string path;  ///< begins with "/"; no blanks or control characters
    VeJson body;       ///< empty for none
    std::string token; ///< empty for none
};

/// What a server sent back.
class VeResponse {
  public:
    explicit VeResponse(VeJson payload) : payload(std::move(payload)) {}

    [[nodiscard]] const VeJson& Payload() const { return payload; }

  private:
    VeJson payload;
};

/// The response to a request that succeeded; a failed request throws instead.
class VeRequestResponse final : public VeResponse {
  public:
    using VeResponse::VeResponse;
};

/// One request and the wait for its response.
///
/// Everything happens on the calling thread, within the first GetResponse or CheckResponse: the request is
/// sent there, and it is sent once. The system that made it need not outlive it.
class VeTransaction {
  public:
    explicit VeTransaction(HttpRequest request);

    /// Waits until the response is complete.
    /// @param timeout microseconds for the complete exchange, connecting included (at most 5 s of it); the
    ///        call takes no longer, whatever the server does Throws Ve::Exception when the request fails:
    ///        bERROR_TIMEOUT, bERROR_CONNECTION, bERROR_REFUSED, bERROR_FORMAT, bERROR_LIMIT or
    ///        bERROR_MEMORY; and bERROR_PARAMETER for a request that cannot be sent, or when it has failed
    ///        before.
    [[nodiscard]] VeRequestResponse GetResponse(std::int64_t timeout);

    /// Waits in the same way and throws unless the request succeeded.
    void CheckResponse(std::int64_t timeout);

  private:
    HttpRequest request;
    std::optional<VeRequestResponse> response;
    bool sent = false;
};

} // namespace OstraSdk
