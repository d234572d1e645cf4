#pragma once

#include "wire/VeJson.h"

#include <utility>

namespace OstraSdk {

/// What a server sent back.
class VeResponse {
  public:
    explicit VeResponse(VeJson payload) : payload(std::move(payload)) {}

    [[nodiscard]] const VeJson& Payload() const { return payload; }

  private:
    VeJson payload;
};

/// The response to a request that succeeded; a request that failed has none, but an exception.
class VeRequestResponse final : public VeResponse {
  public:
    using VeResponse::VeResponse;
};

} // namespace OstraSdk
