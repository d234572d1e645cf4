#include "RequestReader.h"

#include "ContentDigest.h"
#include "RequestError.h"

#include <limits>
#include <vector>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>

namespace http = boost::beast::http;
using boost::beast::error_code;

RequestReader::RequestReader(TimedStream& stream, boost::beast::flat_buffer& buffer, const Patience& patience)
    : stream(stream), buffer(buffer), patience(patience) {
    constexpr std::uint32_t kLongestHead = 8U * 1024U;
    parser.header_limit(kLongestHead);
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

void RequestReader::ReadBody(BodySpool& spool, std::uint64_t limit) {
    const auto declared = parser.content_length();
    if (declared && *declared > limit)
        throw RequestError(413, "The request is too large.");
    parser.body_limit(limit);
    if (parser.is_done())
        return;
    stream.ExpireAfter(patience.body);
    Continue();
    ReadChunks(spool);
    CheckDigest(spool);
}

/// Of the bytes of an archive nothing else would tell that one flipped on the way. A client that asks for
/// digests sends them, too: where its own is missing, the head was damaged.
void RequestReader::CheckDigest(const BodySpool& spool) const {
    bool told = false;
    const auto [first, last] = parser.get().equal_range(kContentDigest);
    for (auto field = first; field != last; ++field) {
        const auto value = field->value();
        const DigestCheck check = CheckContentDigest({value.data(), value.size()}, checksum.Value());
        if (check == DigestCheck::Different)
            throw RequestError(400, "The request was damaged on its way.");
        told = told || check == DigestCheck::Equal;
    }
    if (!told && spool.Size() > 0 && WantsDigest())
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

void RequestReader::ReadChunks(BodySpool& spool) {
    constexpr std::size_t kChunk = std::size_t{256} * 1024;
    std::vector<char> chunk(kChunk);
    while (!parser.is_done()) {
        parser.get().body().data = chunk.data();
        parser.get().body().size = chunk.size();
        error_code error;
        http::read(stream, buffer, parser, error);
        if (error && error != http::error::need_buffer)
            Fail(error);
        const std::size_t count = chunk.size() - parser.get().body().size;
        checksum.Take(chunk.data(), count);
        spool.Append(chunk.data(), count);
    }
}

void RequestReader::Fail(const error_code& error) const {
    if (error == boost::beast::error::timeout)
        throw RequestError(408, "The request did not arrive in time.");
    if (error == http::error::body_limit)
        throw RequestError(413, "The request is too large.");
    if (error == http::error::partial_message || error == http::error::end_of_stream)
        throw RequestError(400, "The request ended early.");
    throw RequestError(400, "The request is malformed: " + error.message() + ".");
}
