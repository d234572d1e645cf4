#include "server/RequestReader.h"

#include "wire/ContentDigest.h"

#include <array>
#include <limits>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>

namespace http = boost::beast::http;
using boost::beast::error_code;

RequestReader::RequestReader(TimedStream& stream, boost::beast::flat_buffer& buffer, const Patience& patience)
    : stream(stream), buffer(buffer), patience(patience) {
    constexpr std::uint32_t kLongestHead = 8U * 1024U;
    constexpr std::size_t kReadAhead = std::size_t{64} * 1024;
    parser.header_limit(kLongestHead);
    buffer.reserve(kReadAhead); // the parser asks the connection for as much as fits
    parser.body_limit(std::numeric_limits<std::uint64_t>::max()); // until the path tells the true one
}

bool RequestReader::ReadHead() {
    stream.ExpireAfter(patience.head);
    error_code error;
    http::read_header(stream, buffer, parser, error);
    if (!error)
        return true;
    if (!parser.got_some())
        return false;
    Fail(error);
}

std::string RequestReader::Verb() const {
    const std::string verb = parser.get().method_string().to_string();
    return verb.empty() ? "-" : verb;
}

std::string RequestReader::Path() const {
    const std::string path = parser.get().target().to_string();
    return path.empty() ? "-" : path;
}

std::string RequestReader::ContentType() const {
    return parser.get()[http::field::content_type].to_string();
}

void RequestReader::BeginBody(std::uint64_t limit) {
    const auto declared = parser.content_length();
    if (declared && *declared > limit)
        throw RequestError(413, "The request is too large.");
    parser.body_limit(limit);
    if (parser.is_done())
        return;
    mostBytes = declared ? *declared : limit;
    stream.ExpireAfter(patience.body);
    Continue();
}

std::size_t RequestReader::Read(char* bytes, std::size_t count) {
    const std::uint64_t before = bytesRead;
    while (!parser.is_done() && bytesRead - before < count) {
        const auto done = static_cast<std::size_t>(bytesRead - before);
        ReadOn(bytes + done, count - done);
    }
    return static_cast<std::size_t>(bytesRead - before);
}

void RequestReader::EndBody() {
    constexpr std::size_t kPassedOver = std::size_t{16} * 1024;
    std::array<char, kPassedOver> rest{};
    while (!parser.is_done())
        Read(rest.data(), rest.size());
    if (bytesRead > 0)
        CheckDigest();
}

/// Of the bytes of an archive nothing else would tell that one flipped on the way. A client that asks for
/// digests sends them, too: where its own is missing, the head was damaged.
void RequestReader::CheckDigest() const {
    bool told = false;
    const auto [first, last] = parser.get().equal_range(kContentDigest);
    for (auto field = first; field != last; ++field) {
        const auto value = field->value();
        const DigestCheck check = CheckContentDigest({value.data(), value.size()}, checksum.Value());
        if (check == DigestCheck::Different)
            throw RequestError(400, "The request was damaged on its way.");
        told = told || check == DigestCheck::Equal;
    }
    if (!told && WantsDigest())
        throw RequestError(400, "The request does not tell its digest.");
}

bool RequestReader::WantsDigest() const {
    constexpr unsigned kHttp11 = 11;
    const auto value = parser.get()[kWantContentDigest];
    return parser.get().version() == kHttp11 && WantsCrc32c({value.data(), value.size()});
}

void RequestReader::Continue() {
    if (!boost::beast::iequals(parser.get()[http::field::expect], "100-continue"))
        return;
    constexpr const char* kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
    error_code error;
    boost::asio::write(stream, boost::asio::buffer(kContinue, std::char_traits<char>::length(kContinue)),
                       error);
    if (error)
        Fail(error);
}

/// Reads up to `count` bytes of the body, perhaps none yet.
void RequestReader::ReadOn(char* bytes, std::size_t count) {
    if (failure)
        throw *failure;
    parser.get().body().data = bytes;
    parser.get().body().size = count;
    error_code error;
    http::read_some(stream, buffer, parser, error);
    count -= parser.get().body().size;
    checksum.Take(bytes, count);
    bytesRead += count;
    if (error && error != http::error::need_buffer)
        Fail(error);
}

/// A failure is for good: the parser must not go on after it.
void RequestReader::Fail(const error_code& error) {
    if (error == boost::beast::error::timeout)
        failure.emplace(408, "The request did not arrive in time.");
    else if (error == http::error::body_limit)
        failure.emplace(413, "The request is too large.");
    else if (error == http::error::partial_message || error == http::error::end_of_stream)
        failure.emplace(400, "The request ended early.");
    else
        failure.emplace(400, "The request is malformed: " + error.message() + ".");
    throw *failure;
}
