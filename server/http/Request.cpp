#include "server/http/Request.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "server/http/HttpError.h"
#include "wire/ContentDigest.h"
#include "wire/WireBody.h"

#include <optional>
#include <string_view>

#include <boost/asio/write.hpp>
#include <boost/beast/core/string.hpp>

using OstraSdk::VeJson;

namespace {

constexpr int kHttp11 = 11;

/// The answer to a request that cannot be read.
HttpError Refusal(const Ve::Exception& failure) {
    const unsigned status = failure.Status() == bERROR_TIMEOUT ? 408
                            : failure.Status() == bERROR_LIMIT ? 413
                                                               : 400;
    return {status, std::string("The request cannot be read: ") + failure.what()};
}

} // namespace

bool Request::ReadHead() try { return message.ReadHead(); } catch (const Ve::Exception& failure) {
    throw Refusal(failure);
}

std::string Request::Verb() const {
    const std::string verb = message.Head().method_string().to_string();
    return verb.empty() ? "-" : verb;
}

std::string Request::Path() const {
    const std::string path = message.Head().target().to_string();
    return path.empty() ? "-" : path;
}

bool Request::IsHttp10() const {
    return message.Head().version() < kHttp11;
}

bool Request::HasCborBody() const {
    return OstraSdk::IsCborType(Value(Field::content_type));
}

void Request::BeginBody(std::uint64_t limit, std::chrono::milliseconds time) try {
    message.BeginBody(limit);
    stream.ExpireAfter(time);
    Continue();
} catch (const Ve::Exception& failure) {
    throw Refusal(failure);
}

/// Sends "100 Continue" to a client that waits for it before it sends the body.
void Request::Continue() {
    constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
    if (message.IsComplete() || !boost::beast::iequals(Value(Field::expect), "100-continue"))
        return;
    OstraSdk::TimedStream::Error error; // occurs again when the body is read
    boost::asio::write(stream, boost::asio::buffer(kContinue), error);
}

VeJson Request::ReadBody(const OstraSdk::ByteStringSink& takeBytes) {
    constexpr std::size_t kMaxOtherSize = std::size_t{64} * 1024;
    std::optional<HttpError> refusal;
    VeJson body;
    try {
        CheckContentType();
        body = OstraSdk::ReadBody(message, Value(Field::content_type), {message.MaxBytes(), kMaxOtherSize},
                                  takeBytes);
        if (!body.IsEmpty() && !body.IsObject())
            refusal.emplace(400, "The body is not an object.");
    } catch (const Ve::Exception& failure) {
        refusal.emplace(400, failure.what());
    } catch (const HttpError& failure) {
        refusal = failure;
    }
    SkipBody();
    if (refusal)
        throw HttpError(*refusal);
    return body;
}

/// A POST without a content type could be sent by a form on a web page.
void Request::CheckContentType() const {
    const std::size_t count = Count(Field::content_type);
    if (count > 1 || (count == 0 && Verb() == "POST"))
        throw HttpError(400, "The request must name exactly one content type.");
    if (count == 1 && !HasCborBody() && !OstraSdk::IsJsonType(Value(Field::content_type)))
        throw HttpError(400, "The body is neither JSON nor CBOR.");
}

void Request::SkipBody() try {
    message.PassOverRest();
    // A client that asks for digests also sends them: if its own is missing, the head was damaged.
    message.CheckDigest(message.BytesRead() > 0 && WantsDigest());
} catch (const Ve::Exception& failure) {
    throw Refusal(failure);
}

bool Request::WantsDigest() const {
    const auto value = message.Head()[kWantContentDigest];
    return !IsHttp10() && WantsCrc32c({value.data(), value.size()});
}

bool Request::KeepsAlive() const {
    return message.IsComplete() && message.KeepsAlive() && !HasForeignCoding();
}

VeJson::Bytes Request::Skip(OstraSdk::ByteString&) {
    return {};
}
