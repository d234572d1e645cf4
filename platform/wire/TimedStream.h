#pragma once

#include "wire/ByteSource.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace OstraSdk {

/// One end of a connection, read and written sequentially by one thread, with a deadline that no call
/// exceeds. It needs one descriptor, the socket's.
class TimedStream final : public InputStream {
  public:
    using Error = boost::system::error_code;
    using Socket = boost::asio::ip::tcp::socket;

    /// @param socket connected or not yet; used by nobody else
    explicit TimedStream(Socket socket);

    /// Connects the socket. @param context the socket's context; nobody else runs it
    /// @return the reason of a failure
    [[nodiscard]] Error Connect(boost::asio::io_context& context, const boost::asio::ip::tcp::endpoint& peer);

    /// From now on calls fail with boost::asio::error::timed_out after this time; the connection stays open.
    void ExpireAfter(std::chrono::microseconds time);

    /// Waits until there is something to read. @return false when nothing arrives in time or the peer has
    /// ended
    [[nodiscard]] bool AwaitInput();
    std::size_t ReadSome(void* bytes, std::size_t capacity, Error& error) override;

    /// For boost::asio::write, which writes everything.
    template<typename Buffers>
    std::size_t write_some(const Buffers& buffers, Error& error) {
        return Patiently(
            {.output = true}, [&] { return socket.write_some(buffers, error); }, error);
    }

    /// Writes while ReadSome waits, these pieces, which must live as long as this object. A failure to write
    /// does not make reading fail: the peer may have said why it refuses the rest.
    void WriteMeanwhile(const std::vector<std::string_view>& pieces);
    /// Whether all of that was written.
    [[nodiscard]] bool HasWrittenAll() const { return unwritten.empty() && !writingFailed; }

    /// Waits for a while. @return false when Stop ended it early
    [[nodiscard]] bool Pause(std::chrono::milliseconds time);

    /// Closes so that the peer still gets what was written: signals the end, then reads and discards what the
    /// peer is still sending, for at most a second.
    void CloseGently();
    /// Closes immediately.
    void Close();

    /// Makes the running call and every later one fail. The only operation for other threads.
    void Stop();

    /// The peer's dotted address; empty for a connection that has ended.
    [[nodiscard]] std::string LocalAddress() const;

  private:
    using Clock = std::chrono::steady_clock;
    struct Wait {
        bool input = false;
        bool output = false;
    };

    template<typename Call>
    std::size_t Patiently(Wait wait, const Call& call, Error& error) {
        while (MayGoOn(error)) {
            const std::size_t count = call();
            if (error != boost::asio::error::would_block)
                return count;
            if (!WriteUnwritten())
                Await(wait, deadline);
        }
        return 0;
    }
    void Prepare();
    [[nodiscard]] bool MayGoOn(Error& error) const;
    [[nodiscard]] bool WriteUnwritten();
    bool Await(Wait wait, Clock::time_point end);

    Socket socket;
    std::mutex closing; ///< held while closing the socket, and while stopping an open one
    Clock::time_point deadline = Clock::time_point::max();
    std::vector<std::string_view> unwritten; ///< the last piece first
    bool writingFailed = false;
    std::atomic<bool> stopped = false;
};

} // namespace OstraSdk
