#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A connection on which a test writes arbitrary bytes and reads the replies.
class RawHttp {
  public:
    struct Reply {
        unsigned status = 0;      ///< 0 when no complete head arrived
        std::string head;         ///< status line and fields, with the empty line
        std::string body;         ///< as far as it arrived; chunks with their framing and trailers
        std::uint64_t length = 0; ///< the value of Content-Length
        [[nodiscard]] bool IsComplete() const { return status != 0 && body.size() == length; }
    };

    /// @param from the address of this machine to connect from: any of 127.0.0.1 to 127.255.255.254
    explicit RawHttp(std::uint16_t port, const std::string& from = "127.0.0.1");
    RawHttp(const RawHttp&) = delete;
    RawHttp& operator=(const RawHttp&) = delete;
    ~RawHttp();

    /// @return false when the server no longer accepts bytes
    bool Send(const std::string& bytes);
    /// Ends the sending direction.
    void EndSending();
    /// Reads the head of one reply; the rest is left to the next call.
    Reply ReadHead();
    /// Reads one reply; ends early when the server closes or stays silent for 30 s.
    Reply Read();
    /// Whether the server has closed the connection (waits up to 30 s for it).
    bool Closed();

    /// Sends one request on a new connection.
    static Reply Request(std::uint16_t port, const std::string& verb, const std::string& path,
                         const std::string& body = {}, const std::string& type = "application/json");

    /// The text of a request with the right Content-Length.
    static std::string Text(const std::string& verb, const std::string& path, const std::string& body = {},
                            const std::string& type = "application/json");

  private:
    /// @return false at the end of the input
    bool ReadMore();
    /// Reads a chunked body. @return its bytes with their framing, fewer when it ends early
    std::size_t ReadChunks();
    /// Reads until a text occurs after `from`. @return its position; npos at the end of the input
    std::size_t AwaitText(const std::string& text, std::size_t from);

    int connection = -1;
    std::string received;
};
