#include "ostrasdk/HttpExchange.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/AccessToken.h"
#include "wire/ContentDigest.h"
#include "wire/JsonText.h"
#include "wire/WireBody.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/write.hpp>

#include <algorithm>
#include <new>
#include <sstream>

namespace OstraSdk {

namespace http = boost::beast::http;
namespace asio = boost::asio;

namespace {

constexpr std::chrono::seconds kConnectTimeout(5);
constexpr std::uint64_t kMaxReply = 4ULL * 1024 * 1024 * 1024;
constexpr const char* kFunction = "HttpExchange::Run";

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

asio::ip::tcp::endpoint EndpointOf(const HttpRequest& request) {
    return {asio::ip::address_v4(request.address.octets), static_cast<std::uint16_t>(request.port)};
}

/// The digest is sent before the body, which is in memory.
std::string DigestOf(const WireBody& body) {
    Crc32c checksum;
    for (const std::string_view part : body.Parts())
        checksum.Take(part.data(), part.size());
    return ContentDigest(checksum.Value());
}

std::string Head(const HttpRequest& request, const WireBody& body) {
    std::ostringstream host;
    host << EndpointOf(request);
    http::request<http::empty_body> head(BeastVerb(request.verb), request.path, 11);
    head.set(http::field::host, host.str());
    head.set(http::field::connection, "close");
    if (!body.ContentType().empty())
        head.set(http::field::content_type, std::string(body.ContentType()));
    if (request.verb != HttpVerb::Get || body.Size() > 0)
        head.content_length(body.Size());
    if (!request.token.empty())
        head.set(http::field::authorization, BearerOf(request.token));
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

bool IsInformational(unsigned status) {
    return status >= 100 && status < 200;
}

} // namespace

HttpExchange::HttpExchange(const HttpRequest& request)
    : request(request), body(request.body), stream(asio::ip::tcp::socket(context)) {
    CheckRequest(request);
    head = Head(request, body);
}

VeJson HttpExchange::Run(std::chrono::microseconds timeout) {
    constexpr std::chrono::microseconds kMaxTimeout = std::chrono::hours(24);
    const Clock::time_point end =
        Clock::now() + std::clamp(timeout, std::chrono::microseconds(0), kMaxTimeout);
    try {
        Connect(end);
        std::vector<std::string_view> pieces = body.Parts();
        pieces.insert(pieces.begin(), head);
        stream.WriteMeanwhile(pieces);
        ReceiveHead();
        return ReceiveBody();
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, kFunction,
                            "There is not enough memory for the reply.");
    }
}

void HttpExchange::Connect(Clock::time_point end) {
    const auto left = [&] {
        return std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
    };
    stream.ExpireAfter(std::min<std::chrono::microseconds>(left(), kConnectTimeout));
    const TimedStream::Error failure = stream.Connect(context, EndpointOf(request));
    if (failure == asio::error::timed_out)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_TIMEOUT, kFunction,
                            "The server could not be reached in time.");
    if (failure)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, kFunction, "%s",
                            failure.message().c_str());
    stream.ExpireAfter(left());
}

/// Reads up to the head of the final reply: earlier ones only say that the server is working.
void HttpExchange::ReceiveHead() {
    constexpr int kMaxHeads = 100;
    for (int heads = 0; heads < kMaxHeads; ++heads) {
        reply.emplace(stream, ahead);
        if (!reply->ReadHead())
            throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, kFunction,
                                "The server closed the connection without an answer.");
        if (!IsInformational(reply->Head().result_int()))
            return;
    }
    throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, kFunction, "The server never gives its answer.");
}

VeJson HttpExchange::ReceiveBody() {
    if (reply->Head().result() != http::status::ok)
        ThrowRefusal();
    // Its reply cannot be about a request that it does not have completely.
    if (!stream.HasWrittenAll())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, kFunction,
                            "The server answered before it had the complete request.");
    reply->BeginBody(kMaxReply);
    VeJson value = ReadBody(*reply, reply->Value(http::field::content_type), {reply->MaxBytes(), kMaxText});
    reply->CheckDigest(boost::beast::iequals(reply->Value(http::field::trailer), kContentDigest));
    return value;
}

/// The reason in the body of a refusal, which may be anything.
void HttpExchange::ThrowRefusal() {
    std::string words = "no reason given";
    try {
        reply->BeginBody(kMaxText);
        words = ReadBody(*reply, reply->Value(http::field::content_type), {reply->MaxBytes(), kMaxText})
                    .At("error")
                    .Get<std::string>();
    } catch (const Ve::Exception& failure) {
        if (failure.Status() == bERROR_TIMEOUT)
            throw;
    }
    throw Ve::Exception(__LINE__, __FILE__, bERROR_REFUSED, kFunction, "The server answered %u: %s",
                        reply->Head().result_int(), words.c_str());
}

} // namespace OstraSdk
