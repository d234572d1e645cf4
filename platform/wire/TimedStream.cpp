#include "wire/TimedStream.h"

#include "basalt/FileDescriptor.h"

#include <algorithm>
#include <array>

namespace OstraSdk {

namespace asio = boost::asio;
using asio::ip::tcp;

TimedStream::TimedStream(Socket own) : socket(std::move(own)) {
    if (socket.is_open())
        Prepare();
}

TimedStream::Error TimedStream::Connect(asio::io_context& context, const tcp::endpoint& peer) {
    Error outcome = asio::error::timed_out;
    socket.async_connect(peer, [&](const Error& error) { outcome = error; });
    context.run_until(deadline);
    if (!context.stopped()) { // the pending operation refers to this object: it has to end first
        Close();
        context.run();
        outcome = asio::error::timed_out;
    }
    if (!outcome)
        Prepare();
    return outcome;
}

void TimedStream::Prepare() {
    Error ignored; // the first call reports a connection that has already ended
    socket.non_blocking(true, ignored);
    socket.set_option(tcp::no_delay(true), ignored);
}

void TimedStream::ExpireAfter(std::chrono::microseconds time) {
    constexpr std::chrono::microseconds kMaxTime = std::chrono::hours(24);
    deadline = Clock::now() + std::clamp(time, std::chrono::microseconds(0), kMaxTime);
}

bool TimedStream::AwaitInput() {
    if (!Await({.input = true}, deadline) || stopped)
        return false;
    char first = 0;
    Error error;
    return socket.receive(asio::buffer(&first, 1), Socket::message_peek, error) > 0;
}

std::size_t TimedStream::ReadSome(void* bytes, std::size_t capacity, Error& error) {
    return Patiently(
        {.input = true}, [&] { return socket.read_some(asio::buffer(bytes, capacity), error); }, error);
}

void TimedStream::WriteMeanwhile(const std::vector<std::string_view>& pieces) {
    unwritten.assign(pieces.rbegin(), pieces.rend());
    std::erase_if(unwritten, [](std::string_view piece) { return piece.empty(); });
}

/// @return whether something could be written without waiting
bool TimedStream::WriteUnwritten() {
    constexpr std::size_t kAtOnce = std::size_t{1024} * 1024;
    if (unwritten.empty())
        return false;
    std::string_view& next = unwritten.back();
    Error error;
    const std::size_t count =
        socket.write_some(asio::buffer(next.data(), std::min(next.size(), kAtOnce)), error);
    next.remove_prefix(count);
    writingFailed = error && error != asio::error::would_block;
    if (writingFailed)
        unwritten.clear();
    else if (next.empty())
        unwritten.pop_back();
    return !error;
}

bool TimedStream::Pause(std::chrono::milliseconds time) {
    static_cast<void>(Await({}, Clock::now() + time));
    return !stopped;
}

void TimedStream::CloseGently() {
    constexpr std::chrono::seconds kPatience{1};
    constexpr std::size_t kPiece = std::size_t{16} * 1024;
    Error error;
    socket.shutdown(Socket::shutdown_send, error);
    ExpireAfter(kPatience);
    std::array<char, kPiece> unread{};
    while (!error)
        ReadSome(unread.data(), unread.size(), error);
    Close();
}

void TimedStream::Close() {
    const std::lock_guard lock(closing);
    Error ignored; // the connection has ended either way
    socket.close(ignored);
}

void TimedStream::Stop() {
    stopped = true;
    const std::lock_guard lock(closing);
    Error ignored; // it may have ended already
    socket.shutdown(Socket::shutdown_both, ignored);
}

std::string TimedStream::LocalAddress() const {
    Error error;
    const auto here = socket.local_endpoint(error);
    return error ? std::string() : here.address().to_string();
}

bool TimedStream::MayGoOn(Error& error) const {
    error.clear();
    if (stopped)
        error = asio::error::operation_aborted;
    else if (Clock::now() >= deadline) // otherwise a peer that always has a byte ready would never time out
        error = asio::error::timed_out;
    return !error;
}

bool TimedStream::Await(Wait wait, Clock::time_point end) {
    return WaitForSocket(static_cast<std::uintptr_t>(socket.native_handle()),
                         {.input = wait.input, .output = wait.output || !unwritten.empty()}, end);
}

} // namespace OstraSdk
