#include "TimedStream.h"

#include <array>

#include <boost/asio/buffer.hpp>

void TimedStream::Accept(boost::asio::ip::tcp::socket socket) {
    stream.emplace(std::move(socket));
    Error ignored; // only costs time when it fails
    stream->socket().set_option(boost::asio::ip::tcp::no_delay(true), ignored);
}

void TimedStream::ExpireAfter(std::chrono::milliseconds time) {
    stream->expires_after(time);
}

bool TimedStream::Pause(std::chrono::milliseconds time) {
    Error error;
    pause.expires_after(time);
    Await(error,
          [&](auto done) { pause.async_wait([done](const Error& outcome) mutable { done(outcome, 0); }); });
    return !stopped;
}

void TimedStream::CloseGently() {
    constexpr std::chrono::seconds kPatience{1};
    constexpr std::size_t kChunk = 16U * 1024U;
    Error error;
    stream->socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, error);
    ExpireAfter(kPatience);
    std::array<char, kChunk> unread{};
    while (!error)
        read_some(boost::asio::buffer(unread), error);
    Close();
}

void TimedStream::Close() {
    stream->close();
}

void TimedStream::Stop() {
    stopped = true;
    io.stop();
}

std::string TimedStream::LocalAddress() const {
    Error error;
    const auto here = stream->socket().local_endpoint(error);
    return error ? std::string() : here.address().to_string();
}

void TimedStream::Abandon() {
    // The call that Stop interrupted still refers to the caller's buffers: it has to end first.
    stream->close();
    pause.cancel();
    io.restart();
    io.run();
}
