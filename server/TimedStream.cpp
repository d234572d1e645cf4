#include "server/TimedStream.h"

#include <array>

#include <boost/asio/buffer.hpp>

void TimedStream::Accept(boost::asio::ip::tcp::socket accepted) {
    socket.emplace(std::move(accepted));
    Error ignored; // only costs time when it fails
    socket->set_option(boost::asio::ip::tcp::no_delay(true), ignored);
}

void TimedStream::ExpireAfter(std::chrono::milliseconds time) {
    deadline = Clock::now() + time;
}

bool TimedStream::Pause(std::chrono::milliseconds time) {
    Error error;
    pause.expires_after(time);
    Await(error, Clock::time_point::max(),
          [&](auto done) { pause.async_wait([done](const Error& outcome) mutable { done(outcome, 0); }); });
    return !stopped;
}

void TimedStream::CloseGently() {
    constexpr std::chrono::seconds kPatience{1};
    constexpr std::size_t kChunk = std::size_t{16} * 1024;
    Error error;
    socket->shutdown(boost::asio::ip::tcp::socket::shutdown_send, error);
    ExpireAfter(kPatience);
    std::array<char, kChunk> unread{};
    while (!error)
        read_some(boost::asio::buffer(unread), error);
    Close();
}

void TimedStream::Close() {
    Error ignored; // the connection is gone either way
    socket->close(ignored);
}

void TimedStream::Stop() {
    stopped = true;
    io.stop();
}

std::string TimedStream::LocalAddress() const {
    Error error;
    const auto here = socket->local_endpoint(error);
    return error ? std::string() : here.address().to_string();
}

void TimedStream::Abandon() {
    // The call still refers to the caller's buffers: it has to end first.
    Error ignored;
    socket->cancel(ignored);
    pause.cancel();
    io.restart();
    io.run();
}
