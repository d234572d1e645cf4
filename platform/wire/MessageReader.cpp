#include "wire/MessageReader.h"

#include "basalt/bStatus.h"
#include "wire/ContentDigest.h"

#include <array>
#include <limits>

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/beast/core/buffers_range.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>

namespace OstraSdk {

namespace http = boost::beast::http;
using boost::system::error_code;

namespace {

constexpr std::size_t kMaxHead = std::size_t{64} * 1024;
constexpr std::size_t kMaxFraming = std::size_t{64} * 1024;

/// A connection as the parser reads from it.
class ParserStream {
  public:
    explicit ParserStream(InputStream& stream) : stream(stream) {}

    template<typename Buffers>
    std::size_t read_some(const Buffers& buffers, error_code& error) {
        const boost::asio::mutable_buffer first = *boost::asio::buffer_sequence_begin(buffers);
        return stream.ReadSome(first.data(), first.size(), error);
    }
    template<typename Buffers>
    std::size_t read_some(const Buffers& buffers) {
        error_code error;
        const std::size_t count = read_some(buffers, error);
        if (error)
            throw boost::system::system_error(error);
        return count;
    }

  private:
    InputStream& stream;
};

} // namespace

ReadAhead::ReadAhead() : buffer(kMaxHead) {
    buffer.reserve(kMaxHead); // the parser reads as much from the connection as fits
}

template<bool isRequest>
MessageReader<isRequest>::MessageReader(InputStream& stream, ReadAhead& ahead)
    : stream(stream), buffer(ahead.buffer) {
    parser.header_limit(kMaxHead);
    parser.body_limit(std::numeric_limits<std::uint64_t>::max()); // until the head gives the actual one
}

template<bool isRequest>
bool MessageReader<isRequest>::ReadHead() {
    ParserStream source(stream);
    error_code error;
    http::read_header(source, buffer, parser, error);
    if (error && error != boost::asio::error::timed_out && !parser.got_some())
        return false;
    if (error)
        Fail(error);
    return true;
}

template<bool isRequest>
std::string MessageReader<isRequest>::Value(Field field) const {
    return parser.get()[field].to_string();
}

template<bool isRequest>
bool MessageReader<isRequest>::HasForeignCoding() const {
    const std::size_t count = Count(Field::transfer_encoding);
    return count > 1 ||
           (count == 1 && !boost::beast::iequals(parser.get()[Field::transfer_encoding], "chunked"));
}

template<bool isRequest>
void MessageReader<isRequest>::BeginBody(std::uint64_t limit) {
    const auto declared = parser.content_length();
    if (declared && *declared > limit)
        Fail(__LINE__, bERROR_LIMIT, "The body is larger than " + std::to_string(limit) + " bytes.");
    parser.body_limit(limit);
    maxBytes = parser.is_done() ? 0 : declared ? *declared : limit;
}

template<bool isRequest>
std::size_t MessageReader<isRequest>::Read(char* bytes, std::size_t capacity) {
    std::size_t count = 0;
    while (count == 0 && capacity > 0 && !parser.is_done())
        count = ReadOn(bytes, capacity);
    return count;
}

template<bool isRequest>
void MessageReader<isRequest>::PassOverRest() {
    std::array<char, std::size_t{16} * 1024> rest{};
    while (Read(rest.data(), rest.size()) > 0) {
    }
}

template<bool isRequest>
void MessageReader<isRequest>::CheckDigest(bool isDue) {
    bool given = false;
    const auto [first, last] = parser.get().equal_range(kContentDigest);
    for (auto field = first; field != last; ++field) {
        const auto value = field->value();
        const DigestCheck check = CheckContentDigest({value.data(), value.size()}, checksum.Value());
        if (check == DigestCheck::Different)
            Fail(__LINE__, bERROR_FORMAT, "The body was damaged on its way.");
        given = given || check == DigestCheck::Equal;
    }
    if (isDue && !given)
        Fail(__LINE__, bERROR_FORMAT, "The digest of the body is missing.");
}

/// Reads up to `capacity` bytes of the body, perhaps none yet.
template<bool isRequest>
std::size_t MessageReader<isRequest>::ReadOn(char* bytes, std::size_t capacity) {
    if (failure)
        throw Ve::Exception(*failure);
    parser.get().body().data = bytes;
    parser.get().body().size = capacity;
    ParserStream source(stream);
    error_code error;
    const std::size_t parsed = http::read_some(source, buffer, parser, error);
    const std::size_t count = capacity - parser.get().body().size;
    checksum.Take(bytes, count);
    bytesRead += count;
    if (error && error != http::error::need_buffer)
        Fail(error);
    CountFraming(parsed - count);
    return count;
}

template<bool isRequest>
void MessageReader<isRequest>::CountFraming(std::size_t size) {
    framing += size;
    if (framing > kMaxFraming)
        Fail(__LINE__, bERROR_LIMIT, "The body has too much besides its data.");
}

template<bool isRequest>
void MessageReader<isRequest>::Fail(const error_code& error) {
    if (error == boost::asio::error::timed_out)
        Fail(__LINE__, bERROR_TIMEOUT, "It did not arrive in time.");
    if (error == http::error::body_limit)
        Fail(__LINE__, bERROR_LIMIT, "The body is too large.");
    if (error == http::error::buffer_overflow && parser.is_header_done())
        Fail(__LINE__, bERROR_LIMIT, "The body has too much besides its data.");
    if (error == http::error::partial_message || error == http::error::end_of_stream)
        Fail(__LINE__, bERROR_CONNECTION, "It ended early.");
    Fail(__LINE__, bERROR_CONNECTION, error.message());
}

/// A failure is final: the parser must not continue after it.
template<bool isRequest>
void MessageReader<isRequest>::Fail(int line, int status, const std::string& reason) {
    failure.emplace(line, __FILE__, status, "MessageReader", "%s", reason.c_str());
    throw Ve::Exception(*failure);
}

template class MessageReader<true>;
template class MessageReader<false>;

} // namespace OstraSdk
