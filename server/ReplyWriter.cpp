#include "server/ReplyWriter.h"

#include "server/PlainText.h"
#include "wire/ContentDigest.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_prefix.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/write.hpp>

#include <QJsonDocument>
#include <QJsonObject>

namespace http = boost::beast::http;

ReplyWriter::ReplyWriter(TimedStream& stream, const Fault& fault, bool keepAlive, bool digest)
    : stream(stream), fault(fault), keepAlive(keepAlive), digest(digest) {
}

void ReplyWriter::Head(unsigned status, std::string_view contentType, std::uint64_t bodySize) {
    http::response_header<> head;
    head.version(11);
    head.result(status);
    if (http::int_to_status(status) == http::status::unknown)
        head.reason("Unknown");
    head.set(http::field::server, "ostra-server/" CORVANE_VERSION);
    head.set(http::field::content_type, boost::beast::string_view(contentType.data(), contentType.size()));
    if (!allowedVerbs.empty())
        head.set(http::field::allow, allowedVerbs);
    if (digest) {
        head.set(http::field::transfer_encoding, "chunked");
        head.set(http::field::trailer, kContentDigest);
    } else {
        head.set(http::field::content_length, std::to_string(bodySize));
    }
    head.set(http::field::connection, keepAlive ? "keep-alive" : "close");
    std::ostringstream text;
    text << head;
    Write(text.str().data(), text.str().size());
}

bool ReplyWriter::Body(const char* bytes, std::size_t size) {
    constexpr std::uint64_t kBetweenDamages = 1000;
    if (bodyLeftOut)
        return !failed;
    if (digest)
        checksum.Take(bytes, size);
    if (fault.damage) {
        damaged.assign(bytes, size);
        for (std::uint64_t i = (kBetweenDamages - bodyWritten % kBetweenDamages) % kBetweenDamages; i < size;
             i += kBetweenDamages)
            damaged[static_cast<std::size_t>(i)] = static_cast<char>(~damaged[static_cast<std::size_t>(i)]);
        bytes = damaged.data();
    }
    bodyWritten += size;
    if (digest && size > 0)
        WriteChunk(bytes, size);
    else
        Write(bytes, size);
    return !failed;
}

void ReplyWriter::End() {
    if (!digest || bodyLeftOut)
        return;
    const std::string end =
        "0\r\n" + std::string(kContentDigest) + ": " + ContentDigest(checksum.Value()) + "\r\n\r\n";
    Write(end.data(), end.size());
}

void ReplyWriter::Error(unsigned status, std::string_view text) {
    const QJsonObject body{{QStringLiteral("error"), QString::fromStdString(PlainText(text))}};
    Json(status, QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString());
}

void ReplyWriter::Json(unsigned status, std::string_view body) {
    Head(status, "application/json", body.size());
    Body(body.data(), body.size());
    End();
}

void ReplyWriter::WriteChunk(const char* bytes, std::size_t size) {
    std::array<char, 2 * sizeof(size) + 3> head{};
    const int headSize = std::snprintf(head.data(), head.size(), "%zx\r\n", size);
    WriteAll(std::array<boost::asio::const_buffer, 3>{
        boost::asio::buffer(head.data(), static_cast<std::size_t>(headSize)),
        boost::asio::buffer(bytes, size), boost::asio::buffer("\r\n", 2)});
}

void ReplyWriter::Write(const char* bytes, std::size_t size) {
    WriteAll(std::array{boost::asio::const_buffer(bytes, size)});
}

template<typename Buffers>
void ReplyWriter::WriteAll(const Buffers& buffers) {
    if (failed)
        return;
    std::size_t size = boost::beast::buffer_bytes(buffers);
    const bool cut = fault.cutAfter && size > *fault.cutAfter - written;
    if (cut)
        size = static_cast<std::size_t>(*fault.cutAfter - written);
    boost::beast::error_code error;
    boost::asio::write(stream, boost::beast::buffers_prefix(size, buffers), error);
    written += size;
    failed = cut || error;
}
