#pragma once

#include "ostrasdk/VeTransaction.h"
#include "wire/MessageReader.h"
#include "wire/TimedStream.h"
#include "wire/VeJson.h"
#include "wire/WireBody.h"

#include <boost/asio/io_context.hpp>

#include <chrono>
#include <optional>
#include <string>

namespace OstraSdk {

/// One request and its reply over a connection of their own, on the calling thread.
///
/// Request and reply are transferred at the same time, so that a server may answer before it has read
/// everything (and refuse a body that it does not want). One deadline applies to the complete exchange,
/// whatever the server does.
class HttpExchange final {
  public:
    explicit HttpExchange(const HttpRequest& request);

    /// The reply's value. Throws Ve::Exception: bERROR_TIMEOUT, bERROR_CONNECTION, bERROR_REFUSED for a
    /// status other than 200, bERROR_FORMAT, bERROR_LIMIT, bERROR_MEMORY.
    [[nodiscard]] VeJson Run(std::chrono::microseconds timeout);

  private:
    using Clock = std::chrono::steady_clock;

    void Connect(Clock::time_point end);
    void ReceiveHead();
    [[nodiscard]] VeJson ReceiveBody();
    [[noreturn]] void ThrowRefusal();

    const HttpRequest& request;
    WireBody body;
    std::string head;
    boost::asio::io_context context{1};
    TimedStream stream;
    ReadAhead ahead;
    std::optional<ReplyMessage> reply;
};

} // namespace OstraSdk
