#pragma once

#include "server/http/Request.h"
#include "wire/JsonText.h"
#include "wire/WireBody.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Takes the next bytes of a body. @return false when no more are wanted
using ByteSink = std::function<bool(std::string_view bytes)>;

/// What a request that succeeds is answered with.
struct Answer {
    std::string contentType;
    std::uint64_t size = 0;                    ///< of the body
    std::function<void(const ByteSink&)> send; ///< gives the body; less than its size when something fails

    static Answer Json(const OstraSdk::VeJson& value) {
        std::string text = value.IsEmpty() ? "{}" : OstraSdk::ToJsonText(value);
        const std::size_t size = text.size();
        return {std::string(OstraSdk::kJsonType), size,
                [text = std::move(text)](const ByteSink& sink) { sink(text); }};
    }
};

/// Carries out the requests of one verb and path. Used by several threads at once.
class Handler {
  public:
    Handler() = default;
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    virtual ~Handler() = default;

    /// The largest body that a request may have.
    [[nodiscard]] virtual std::uint64_t BodyLimit(const Request& request) const;
    /// Reads the body of a request, which may come now, and does what it asks.
    /// @throws HttpError, or std::exception for a failure of the server's own
    [[nodiscard]] virtual Answer Handle(Request& request) const = 0;
};

/// Checks that a body names all workspaces under "contents", and has bytes under "data" if anything.
/// @throws HttpError with status 400 otherwise
void RequireAllWorkspaces(const OstraSdk::VeJson& body);
