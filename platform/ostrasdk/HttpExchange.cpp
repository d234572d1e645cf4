#include "ostrasdk/HttpExchange.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/ContentDigest.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <algorithm>
#include <new>
#include <sstream>

namespace OstraSdk {

namespace http = boost::beast::http;
namespace asio = boost::asio;

namespace {

constexpr std::chrono::seconds kConnectTimeout(5);
constexpr std::uint64_t kLargestReply = 4ULL * 1024 * 1024 * 1024;
constexpr std::size_t kSentAtOnce = std::size_t{1024} * 1024;
constexpr std::size_t kReceivedAtOnce = std::size_t{64} * 1024; // the parser asks for no more

http::verb BeastVerb(HttpVerb verb) {
    switch (verb) {
    case HttpVerb::Post:
        return http::verb::post;
    case HttpVerb::Put:
        return http::verb::put;
    default:
        return http::verb::get;
    }
}

asio::ip::tcp::endpoint Endpoint(const HttpRequest& request) {
    return {asio::ip::address_v4(request.address.octets), static_cast<std::uint16_t>(request.port)};
}

/// The digest goes ahead of the body, which lies in memory.
std::string DigestOf(const WireBody& body) {
    Crc32c checksum;
    for (const std::string_view part : body.Parts())
        checksum.Take(part.data(), part.size());
    return ContentDigest(checksum.Value());
}

std::string Head(const HttpRequest& request, const WireBody& body) {
    std::ostringstream host;
    host << Endpoint(request);
    http::request<http::empty_body> head(BeastVerb(request.verb), request.path, 11);
    head.set(http::field::host, host.str());
    head.set(http::field::connection, "close");
    if (!body.ContentType().empty())
        head.set(http::field::content_type, std::string(body.ContentType()));
    if (request.verb != HttpVerb::Get || body.Size() > 0)
        head.content_length(body.Size());
    head.set(kWantContentDigest, kWantedDigest);
    if (body.Size() > 0)
        head.set(kContentDigest, DigestOf(body));
    std::ostringstream text;
    text << head;
    return text.str();
}

void CheckRequest(const HttpRequest& request) {
    const auto isPlain = [](char letter) { return letter > ' ' && letter <= '~'; };
    const bool pathIsPlain = !request.path.empty() && request.path.front() == '/' &&
                             std::all_of(request.path.begin(), request.path.end(), isPlain);
    if (!pathIsPlain || request.port == 0 || request.port > 65535)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_PARAMETER, "HttpExchange",
                            "No request can be sent to port %u, path \"%s\".", request.port,
                            request.path.c_str());
}

} // namespace

HttpExchange::HttpExchange(const HttpRequest& request) : request(request), body(request.body) {
    CheckRequest(request);
    head = Head(request, body);
    parser.body_limit(kLargestReply);
    buffer.reserve(kReceivedAtOnce);
}

VeJson HttpExchange::Run(std::chrono::microseconds timeout) {
    try {
        ArmDeadline(deadline, timeout);
        ArmDeadline(connectDeadline, kConnectTimeout);
        socket.async_connect(Endpoint(request), [this](const Error& error) { Connected(error); });
        context.run();
        return Result();
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, "HttpExchange::Run",
                            "There is not enough memory for the reply.");
    }
}

void HttpExchange::ArmDeadline(asio::steady_timer& timer, std::chrono::microseconds timeout) {
    constexpr std::chrono::microseconds kLongest = std::chrono::hours(24);
    timer.expires_after(std::clamp(timeout, std::chrono::microseconds(0), kLongest));
    timer.async_wait([this](const Error& error) {
        if (error == asio::error::operation_aborted)
            return;
        timedOut = true;
        Stop();
    });
}

void HttpExchange::Connected(const Error& error) {
    failure = error;
    if (error) {
        Stop();
        return;
    }
    connected = true;
    connectDeadline.cancel();
    Send();
    ReceiveHead();
}

void HttpExchange::Send() {
    std::vector<asio::const_buffer> buffers{asio::buffer(head)};
    for (const std::string_view part : body.Parts())
        buffers.emplace_back(part.data(), part.size());
    const auto inLargePieces = [](const Error& error, std::size_t) { return error ? 0 : kSentAtOnce; };
    // A failure is not looked at: what matters is the reply, and without one receiving fails as well.
    asio::async_write(socket, buffers, inLargePieces, [](const Error&, std::size_t) {});
}

void HttpExchange::ReceiveHead() {
    http::async_read_header(socket, buffer, parser,
                            [this](const Error& error, std::size_t) { HeadReceived(error); });
}

void HttpExchange::HeadReceived(const Error& error) {
    failure = error;
    if (error) {
        Stop();
        return;
    }
    std::optional<std::uint64_t> size;
    if (const auto length = parser.content_length())
        size = *length;
    const auto contentType = parser.get()[http::field::content_type];
    parser.get().body().Start({contentType.data(), contentType.size()}, size);
    http::async_read(socket, buffer, parser, [this](const Error& readError, std::size_t) {
        failure = readError;
        Stop();
    });
}

/// Ends everything that is under way, so that the context has nothing left to run.
void HttpExchange::Stop() {
    Error ignored;
    socket.close(ignored);
    deadline.cancel();
    connectDeadline.cancel();
}

VeJson HttpExchange::Result() {
    constexpr const char* kFunction = "HttpExchange::Run";
    if (timedOut)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_TIMEOUT, kFunction, "%s in time.",
                            connected ? "The server did not answer" : "The server could not be reached");
    if (failure == http::error::body_limit)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, kFunction, "The reply is too large.");
    if (failure)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, kFunction, "%s",
                            failure.message().c_str());
    if (parser.get().result() != http::status::ok)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_REFUSED, kFunction, "The server answered %u: %s",
                            parser.get().result_int(), WordsOfTheServer().c_str());
    CheckDigest();
    return parser.get().body().Finish();
}

/// Before the body is looked at: a flipped bit in the middle of a file would not show.
void HttpExchange::CheckDigest() {
    const auto& reply = parser.get();
    const std::uint32_t checksum = reply.body().Checksum();
    bool told = false;
    const auto [first, last] = reply.equal_range(kContentDigest);
    for (auto field = first; field != last; ++field) {
        const auto value = field->value();
        const DigestCheck check = CheckContentDigest({value.data(), value.size()}, checksum);
        if (check == DigestCheck::Different)
            throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "HttpExchange::Run",
                                "The reply was damaged on its way.");
        told = told || check == DigestCheck::Equal;
    }
    if (!told && boost::beast::iequals(reply[http::field::trailer], kContentDigest))
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "HttpExchange::Run",
                            "The digest that the reply announced is missing.");
}

/// What a refusal says in its body, which may be anything.
std::string HttpExchange::WordsOfTheServer() {
    try {
        return parser.get().body().Finish().At("error").Get<std::string>();
    } catch (const Ve::Exception&) {
        return "no reason given";
    }
}

} // namespace OstraSdk
