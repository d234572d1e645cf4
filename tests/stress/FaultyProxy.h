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

/// What goes wrong with one connection through a FaultyProxy: in one direction, once, at one byte of it.
struct LinkFault {
    enum class Kind {
        None,
        Pieces,    ///< everything arrives in small pieces
        Late,      ///< held back for `pause`, while the other direction goes on
        Stop,      ///< nothing more arrives, and the connection stays open
        Cut,       ///< the connection ends in both directions
        Reset,     ///< the same without a farewell
        HalfClose, ///< this direction ends, the other goes on
        Repeat,    ///< the last `length` bytes arrive again
        Lose,      ///< the next `length` bytes do not arrive
        Swap,      ///< the next `length` bytes and those behind them change places
        Corrupt,   ///< `length` of the bytes at hand are changed
        Refuse,    ///< the connection is closed before anything was said
    };
    static constexpr int kKinds = 12;

    Kind kind = Kind::None;
    bool toServer = false;
    std::uint64_t offset = 0;
    std::size_t length = 1;
    std::chrono::milliseconds pause{0};
    std::uint32_t seed = 0; ///< of what is left to chance
};

/// "Cut to the client at byte 20", for reports.
std::string Description(const LinkFault& fault);

/// Stands between clients and a server on loopback and does to their bytes what it is told to.
class FaultyProxy {
  public:
    /// Listens on 127.0.0.1 at a port that the system picks.
    explicit FaultyProxy(std::uint16_t serverPort);
    FaultyProxy(const FaultyProxy&) = delete;
    FaultyProxy& operator=(const FaultyProxy&) = delete;
    ~FaultyProxy();

    [[nodiscard]] std::uint16_t Port() const { return port; }

    /// The faults of the next connections, in their order; later ones suffer none.
    void Plan(std::vector<LinkFault> faults);

    /// Ends every connection, those among them that wait to be accepted. No byte moves any more when it is
    /// back.
    void CloseAll();

  private:
    class Connection;

    void AcceptAll();
    void Accept(int client);

    std::uint16_t serverPort;
    std::uint16_t port = 0;
    int listener = -1;
    std::mutex guard; ///< of what follows
    std::vector<LinkFault> planned;
    std::size_t next = 0;
    std::vector<std::unique_ptr<Connection>> connections;
    std::atomic<bool> ended = false;
    std::thread acceptor;
};
