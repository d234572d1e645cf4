#pragma once

#include "server/http/Request.h"
#include "wire/JsonText.h"
#include "wire/WireBody.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Receives the next bytes of a body. @return false to stop
using ByteSink = std::function<bool(std::string_view bytes)>;

/// The reply to a request that succeeds.
struct Answer {
    std::string contentType;
    std::uint64_t size = 0;                    ///< of the body, in bytes
    std::function<void(const ByteSink&)> send; ///< passes the body on; fewer bytes than `size` on a failure

    static Answer Json(const OstraSdk::VeJson& value) {
        std::string text = value.IsEmpty() ? "{}" : OstraSdk::ToJsonText(value);
        const std::size_t size = text.size();
        return {std::string(OstraSdk::kJsonType), size,
                [text = std::move(text)](const ByteSink& sink) { sink(text); }};
    }
};

/// Carries out the requests of one verb and path. Thread-safe.
class Handler {
  public:
    Handler() = default;
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    virtual ~Handler() = default;

    /// The largest body that a request may have, in bytes.
    [[nodiscard]] virtual std::uint64_t BodyLimit(const Request& /*request*/) const {
        return std::uint64_t{64} * 1024;
    }
    /// Reads the body of a request and carries the request out.
    /// @throws HttpError, or another std::exception when the server itself fails
    [[nodiscard]] virtual Answer Handle(Request& request) const = 0;
};
