#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

/// The fault of one connection through a FaultyProxy: in one direction, once, at one byte.
struct LinkFault {
    enum class Kind {
        None,
        Pieces,    ///< everything arrives in small pieces
        Late,      ///< delayed by `pause`; the other direction continues
        Stop,      ///< nothing more arrives, and the connection stays open
        Cut,       ///< the connection ends in both directions
        Reset,     ///< the connection is reset
        HalfClose, ///< this direction ends, the other continues
        Repeat,    ///< the last `length` bytes arrive again
        Lose,      ///< the next `length` bytes do not arrive
        Swap,      ///< the next `length` bytes and those after them are exchanged
        Corrupt,   ///< `length` bytes are changed
        Refuse,    ///< the connection is closed before any byte
    };
    static constexpr int kKinds = 12;

    Kind kind = Kind::None;
    bool toServer = false;
    std::uint64_t offset = 0;
    std::size_t length = 1;
    std::chrono::milliseconds pause{0};
    std::uint32_t seed = 0; ///< for the random choices
};

/// "Cut to the client at byte 20", for reports.
std::string Description(const LinkFault& fault);

/// Forwards connections of clients to a server on loopback, with the requested faults.
class FaultyProxy {
  public:
    /// Listens on 127.0.0.1 on a free port.
    explicit FaultyProxy(std::uint16_t serverPort);
    FaultyProxy(const FaultyProxy&) = delete;
    FaultyProxy& operator=(const FaultyProxy&) = delete;
    ~FaultyProxy();

    [[nodiscard]] std::uint16_t Port() const { return port; }

    /// The faults of the next connections, in order; later ones have none.
    void Plan(std::vector<LinkFault> faults);

    /// Ends every connection, also those waiting to be accepted. When it returns, no more bytes are
    /// forwarded.
    void CloseAll();

  private:
    class Connection;

    void AcceptAll();
    void Accept(int client);

    std::uint16_t serverPort;
    std::uint16_t port = 0;
    int listener = -1;
    std::mutex guard; ///< of the following members
    std::vector<LinkFault> planned;
    std::size_t next = 0;
    std::vector<std::unique_ptr<Connection>> connections;
    std::atomic<bool> ended = false;
    std::thread acceptor;
};
