#pragma once

#include "ostrasdk/HttpRequest.h"
#include "ostrasdk/ReplyBody.h"
#include "wire/VeJson.h"
#include "wire/WireBody.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>

#include <chrono>
#include <string>

namespace OstraSdk {

/// One request and its reply over a connection of their own, on the calling thread.
///
/// Request and reply move at the same time, so that a server may answer before it has read everything (and
/// refuse a body that it does not want). One deadline holds for the whole exchange, whatever the server does.
class HttpExchange {
  public:
    explicit HttpExchange(const HttpRequest& request);

    /// The reply's value. Throws Ve::Exception: bERROR_TIMEOUT, bERROR_CONNECTION, bERROR_REFUSED for a
    /// status other than 200, bERROR_FORMAT, bERROR_LIMIT, bERROR_MEMORY.
    [[nodiscard]] VeJson Run(std::chrono::microseconds timeout);

  private:
    using Error = boost::beast::error_code;
    using Clock = boost::asio::steady_timer::clock_type;

    void ArmDeadline(boost::asio::steady_timer& timer, std::chrono::microseconds timeout);
    void Connected(const Error& error);
    void Send();
    void ReceiveHead();
    void HeadReceived(const Error& error);
    void Stop();
    [[nodiscard]] VeJson Result();
    void CheckDigest();
    [[nodiscard]] std::string WordsOfTheServer();

    const HttpRequest& request;
    WireBody body;
    std::string head;
    boost::asio::io_context context{1};
    boost::asio::ip::tcp::socket socket{context};
    boost::asio::steady_timer deadline{context};
    boost::asio::steady_timer connectDeadline{context};
    boost::beast::flat_buffer buffer;
    boost::beast::http::response_parser<BeastReplyBody> parser;
    bool timedOut = false;
    bool connected = false;
    Error failure; ///< of connecting or receiving
};

} // namespace OstraSdk
