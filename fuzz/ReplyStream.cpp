#include "ReplyStream.h"

#include "Check.h"
#include "wire/ContentDigest.h"

#include <charconv>
#include <system_error>

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// The number at the start of the text.
std::size_t Number(std::string_view text, int base, const char* promise) {
    std::size_t number = 0;
    Check(std::from_chars(text.data(), text.data() + text.size(), number, base).ec == std::errc(), promise);
    return number;
}

/// The value of a field, by its name as this server writes it; empty when it is missing.
std::string_view Field(std::string_view header, const std::string& name) {
    const std::string mark = "\r\n" + name + ": ";
    const std::size_t at = header.find(mark);
    if (at == std::string_view::npos)
        return {};
    const std::string_view value = header.substr(at + mark.size());
    return value.substr(0, value.find(kLineEnd));
}

} // namespace

ReplyStream::Reply ReplyStream::Take(std::string_view verb) {
    constexpr std::string_view kVersion = "HTTP/1.1 ";
    constexpr unsigned kGoOn = 100;
    constexpr int kDecimal = 10;
    Reply reply;
    std::string_view header;
    do {
        header = TakeHeader();
        Check(header.starts_with(kVersion), "a reply starts with the version");
        reply.status =
            static_cast<unsigned>(Number(header.substr(kVersion.size()), kDecimal, "a reply has a status"));
    } while (reply.status == kGoOn);
    if (verb == "HEAD")
        return reply;
    if (Field(header, "Transfer-Encoding") == "chunked")
        reply.body = TakeChunks();
    else
        reply.body = TakeBytes(Number(Field(header, "Content-Length"), kDecimal, "a reply has a length"));
    return reply;
}

std::string_view ReplyStream::TakeHeader() {
    return TakeUntil("\r\n\r\n", "a reply has a complete header");
}

std::string ReplyStream::TakeChunks() {
    constexpr int kHexadecimal = 16;
    std::string body;
    while (const std::size_t size =
               Number(TakeUntil(kLineEnd, "a chunk has a size"), kHexadecimal, "a chunk has a size")) {
        body += TakeBytes(size);
        Check(TakeUntil(kLineEnd, "a chunk ends").empty(), "a chunk is as long as its size");
    }
    Crc32c checksum;
    checksum.Take(body.data(), body.size());
    const std::string trailer = "\r\n" + std::string(TakeHeader());
    Check(CheckContentDigest(Field(trailer, kContentDigest), checksum.Value()) == DigestCheck::Equal,
          "a body in chunks is followed by its digest");
    return body;
}

std::string_view ReplyStream::TakeUntil(std::string_view mark, const char* promise) {
    const std::size_t at = left.find(mark);
    Check(at != std::string_view::npos, promise);
    const std::string_view taken = left.substr(0, at);
    left.remove_prefix(at + mark.size());
    return taken;
}

std::string_view ReplyStream::TakeBytes(std::size_t count) {
    Check(left.size() >= count, "a reply is sent completely");
    const std::string_view taken = left.substr(0, count);
    left.remove_prefix(count);
    return taken;
}
