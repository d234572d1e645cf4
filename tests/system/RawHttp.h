#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A connection on which a test writes requests byte by byte as it likes, and reads what comes back.
class RawHttp {
  public:
    struct Reply {
        unsigned status = 0;      ///< 0 when no whole head came
        std::string head;         ///< status line and fields, with the empty line
        std::string body;         ///< as far as it came; chunks as they came, with what follows the last one
        std::uint64_t length = 0; ///< what Content-Length says
        [[nodiscard]] bool Whole() const { return status != 0 && body.size() == length; }
    };

    /// @param from the address of this machine to connect from: any of 127.0.0.1 to 127.255.255.254
    explicit RawHttp(std::uint16_t port, const std::string& from = "127.0.0.1");
    RawHttp(const RawHttp&) = delete;
    RawHttp& operator=(const RawHttp&) = delete;
    ~RawHttp();

    /// @return false when the server no longer takes bytes
    bool Send(const std::string& bytes);
    /// Says that no more comes from this side.
    void EndSending();
    /// Reads the head of one reply; what follows it is left to the next call.
    Reply ReadHead();
    /// Reads one reply; ends early when the server closes or stays silent for 30 s.
    Reply Read();
    /// Whether the server has closed the connection (waits up to 30 s for it).
    bool Closed();

    /// One request on a connection of its own.
    static Reply Request(std::uint16_t port, const std::string& verb, const std::string& path,
                         const std::string& body = {}, const std::string& type = "application/json");

    /// The text of a request with a Content-Length that fits.
    static std::string Text(const std::string& verb, const std::string& path, const std::string& body = {},
                            const std::string& type = "application/json");

  private:
    /// @return false at the end of what comes
    bool ReadMore();
    /// Reads a body in chunks. @return its bytes with all that frames them, fewer when it ends early
    std::size_t ReadChunks();
    /// Reads until a text stands behind `from`. @return where; npos at the end of what comes
    std::size_t AwaitText(const std::string& text, std::size_t from);

    int connection = -1;
    std::string received;
};
