#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/error.hpp>

/// A client's connection, read and written in plain sequence by one thread, with a deadline that no call
/// outlives. Serves as Beast's synchronous stream.
class TimedStream final {
  public:
    using Error = boost::beast::error_code;

    /// The context that the connection's socket is made on; run by this object alone.
    boost::asio::io_context& Context() { return io; }
    void Accept(boost::asio::ip::tcp::socket accepted);

    /// From now on calls fail with beast::error::timeout once this time is over; the connection stays open.
    void ExpireAfter(std::chrono::milliseconds time);

    template<typename Buffers>
    std::size_t read_some(const Buffers& buffers, Error& error) {
        return Await(error, deadline, [&](auto done) { socket->async_read_some(buffers, std::move(done)); });
    }
    template<typename Buffers>
    std::size_t write_some(const Buffers& buffers, Error& error) {
        return Await(error, deadline, [&](auto done) { socket->async_write_some(buffers, std::move(done)); });
    }
    template<typename Buffers>
    std::size_t read_some(const Buffers& buffers) {
        return Thrown([&](Error& error) { return read_some(buffers, error); });
    }
    template<typename Buffers>
    std::size_t write_some(const Buffers& buffers) {
        return Thrown([&](Error& error) { return write_some(buffers, error); });
    }

    /// Does nothing for a while. @return false when Stop ended it early
    bool Pause(std::chrono::milliseconds time);

    /// Closes so that the peer still gets what was sent: says that no more comes, then reads away what the
    /// peer was still sending, for at most a second.
    void CloseGently();
    /// Closes at once.
    void Close();

    /// Makes the running call and every later one fail. The only operation for other threads.
    void Stop();
    [[nodiscard]] bool Stopped() const { return stopped; }

    [[nodiscard]] std::string LocalAddress() const;

  private:
    using Clock = std::chrono::steady_clock;

    template<typename Start>
    std::size_t Await(Error& error, Clock::time_point end, const Start& start) {
        std::size_t count = 0;
        bool complete = false;
        error = boost::beast::error::timeout;
        if (Clock::now() >= end)
            return 0; // or a peer that always has a byte ready would never be late
        error = boost::asio::error::operation_aborted;
        io.restart();
        if (stopped)
            return 0;
        start([&](const Error& outcome, std::size_t size) {
            error = outcome;
            count = size;
            complete = true;
        });
        io.run_until(end);
        if (complete)
            return count;
        Abandon();
        if (error && !stopped)
            error = boost::beast::error::timeout;
        return count;
    }
    template<typename Call>
    static std::size_t Thrown(const Call& call) {
        Error error;
        const std::size_t count = call(error);
        if (error)
            throw boost::system::system_error(error);
        return count;
    }
    void Abandon();

    boost::asio::io_context io{1};
    boost::asio::steady_timer pause{io};
    std::optional<boost::asio::ip::tcp::socket> socket;
    Clock::time_point deadline = Clock::time_point::max();
    std::atomic<bool> stopped = false;
};
