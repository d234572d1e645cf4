#include "server/http/ReplyWriter.h"

#include "server/RequestLog.h"
#include "wire/ContentDigest.h"
#include "wire/JsonText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include <boost/asio/write.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/write.hpp>

namespace http = boost::beast::http;

namespace {

/// Large, since clients limit the total size of all chunk headers.
constexpr std::uint64_t kChunk = std::uint64_t{1024} * 1024;
constexpr std::size_t kCollected = std::size_t{64} * 1024;

} // namespace

ReplyWriter::ReplyWriter(OstraSdk::TimedStream& stream, const Fault& fault, const Mode& mode,
                         std::function<void()> beforeLastBytes)
    : stream(stream), fault(fault), mode(mode), beforeLastBytes(std::move(beforeLastBytes)) {
}

void ReplyWriter::Head(unsigned status, std::string_view contentType, std::uint64_t size,
                       const HttpError* refusal) {
    http::response_header<> head;
    head.version(11);
    head.result(status);
    if (http::int_to_status(status) == http::status::unknown)
        head.reason("Unknown");
    head.set(http::field::server, "ostra-server/" CORVANE_VERSION);
    head.set(http::field::content_type, std::string(contentType));
    if (refusal != nullptr && !refusal->Field().empty())
        head.set(refusal->Field(), refusal->Value());
    if (mode.digest) {
        head.set(http::field::transfer_encoding, "chunked");
        head.set(http::field::trailer, kContentDigest);
    } else {
        head.set(http::field::content_length, std::to_string(size));
    }
    head.set(http::field::connection, mode.keepAlive ? "keep-alive" : "close");
    std::ostringstream text;
    text << head;
    Write(text.str());
    bodySize = size;
}

bool ReplyWriter::Body(std::string_view bytes) {
    if (mode.headOnly)
        return !failed;
    if (mode.digest)
        checksum.Take(bytes.data(), bytes.size());
    if (fault.damage)
        bytes = Damaged(bytes);
    bodyWritten += bytes.size();
    if (mode.digest)
        Frame(bytes);
    else
        Write(bytes);
    return !failed;
}

/// Writes bytes of the body within chunks.
void ReplyWriter::Frame(std::string_view bytes) {
    while (!bytes.empty()) {
        if (chunkLeft == 0) {
            chunkLeft = std::min<std::uint64_t>(kChunk, bodySize - (bodyWritten - bytes.size()));
            std::array<char, 2 * sizeof chunkLeft + 3> frame{};
            Write({frame.data(),
                   static_cast<std::size_t>(std::snprintf(frame.data(), frame.size(), "%llx\r\n",
                                                          static_cast<unsigned long long>(chunkLeft)))});
        }
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(chunkLeft, bytes.size()));
        Write(bytes.substr(0, count));
        bytes.remove_prefix(count);
        chunkLeft -= count;
        if (chunkLeft == 0)
            Write("\r\n");
    }
}

void ReplyWriter::End() {
    if (!mode.headOnly && bodyWritten != bodySize) {
        Flush(); // a reply that is cut says that it failed
        failed = true;
    }
    if (mode.digest && !mode.headOnly)
        Write("0\r\n" + std::string(kContentDigest) + ": " + ContentDigest(checksum.Value()) + "\r\n\r\n");
    beforeLastBytes();
    Flush();
}

void ReplyWriter::Error(const HttpError& refusal) {
    OstraSdk::VeJson body;
    body.Set("error", PlainText(refusal.what()));
    const std::string text = OstraSdk::ToJsonText(body);
    Head(refusal.Status(), "application/json", text.size(), &refusal);
    Body(text);
    End();
}

/// Collects small pieces and sends large ones directly. The last bytes of a reply always wait for End.
void ReplyWriter::Write(std::string_view bytes) {
    if (collected.size() + bytes.size() > kCollected)
        Flush();
    const std::size_t kept = bytes.size() <= kCollected ? bytes.size() : bodyWritten == bodySize ? 1 : 0;
    WriteNow(bytes.substr(0, bytes.size() - kept));
    collected.append(bytes.substr(bytes.size() - kept));
}

void ReplyWriter::Flush() {
    WriteNow(collected);
    collected.clear();
}

void ReplyWriter::WriteNow(std::string_view bytes) {
    if (failed || bytes.empty())
        return;
    const bool cut = fault.cutAfter && bytes.size() > *fault.cutAfter - written;
    if (cut)
        bytes = bytes.substr(0, static_cast<std::size_t>(*fault.cutAfter - written));
    boost::asio::write(stream, boost::asio::buffer(bytes), error);
    written += bytes.size();
    failed = cut || error;
}

/// The bytes with every thousandth byte of the body inverted, beginning with the first.
std::string_view ReplyWriter::Damaged(std::string_view bytes) {
    constexpr std::uint64_t kBetweenDamages = 1000;
    damaged.assign(bytes);
    for (std::uint64_t i = (kBetweenDamages - bodyWritten % kBetweenDamages) % kBetweenDamages;
         i < damaged.size(); i += kBetweenDamages)
        damaged[static_cast<std::size_t>(i)] = static_cast<char>(~damaged[static_cast<std::size_t>(i)]);
    return damaged;
}
