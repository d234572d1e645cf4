#include "FaultyProxy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kAtOnce = std::size_t{64} * 1024;

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return place;
}

int NewSocket() {
    const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made < 0)
        throw std::runtime_error("no socket could be made");
    return made;
}

void SetOption(int socket, int level, int option, int value) {
    (void)setsockopt(socket, level, option, &value, sizeof value); // costs time only
}

/// Makes closing the descriptor reset the connection.
void ResetOnClose(int socket) {
    const linger none{1, 0};
    (void)setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

/// Resets the connection while other threads still use the descriptor.
void ResetNow(int socket) {
    sockaddr none{};
    none.sa_family = AF_UNSPEC;
    (void)connect(socket, &none, sizeof none); // fails if the peer was faster
}

bool SendAll(int socket, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t count = send(socket, bytes, size, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::string Description(const LinkFault& fault) {
    constexpr std::array<const char*, LinkFault::kKinds> kNames{"none", "pieces", "late",    "stop",
                                                                "cut",  "reset",  "half",    "repeat",
                                                                "lose", "swap",   "corrupt", "refuse"};
    return std::string(kNames.at(static_cast<std::size_t>(fault.kind))) +
           (fault.toServer ? " to the server" : " to the client") + " at byte " +
           std::to_string(fault.offset) + ", length " + std::to_string(fault.length) + ", pause " +
           std::to_string(fault.pause.count()) + " ms, seed " + std::to_string(fault.seed);
}

/// One client's connection and the one made to the server for it, with a thread for each direction.
class FaultyProxy::Connection {
  public:
    Connection(int client, int server, const LinkFault& fault)
        : client(client), server(server), fault(fault), random(fault.seed) {
        there = std::thread([this] { Pump(this->client, this->server, this->fault.toServer); });
        back = std::thread([this] { Pump(this->server, this->client, !this->fault.toServer); });
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        End();
        there.join();
        back.join();
        close(client);
        close(server);
    }

  private:
    using Kind = LinkFault::Kind;

    void End() {
        {
            const std::lock_guard lock(guard);
            ended = true;
        }
        wake.notify_all();
        shutdown(client, SHUT_RDWR);
        shutdown(server, SHUT_RDWR);
    }

    /// @return false when the connection has ended meanwhile
    bool Pause(std::chrono::milliseconds time) {
        std::unique_lock lock(guard);
        return !wake.wait_for(lock, time, [this] { return ended; });
    }

    void Pump(int from, int to, bool isFaulty) {
        std::array<char, kAtOnce> piece;
        Direction direction{to, isFaulty, 0, {}};
        ssize_t count = 0;
        while ((count = recv(from, piece.data(), piece.size(), 0)) > 0) {
            if (!Pass(direction, std::string(piece.data(), static_cast<std::size_t>(count))))
                return;
        }
        if (count == 0)
            shutdown(to, SHUT_WR);
        else
            End();
    }

    struct Direction {
        int to;
        bool isFaulty; ///< the fault is still pending
        std::uint64_t position = 0;
        std::string lately; ///< the bytes before the position
    };

    /// @return false when this direction has ended
    bool Pass(Direction& direction, const std::string& bytes) {
        if (direction.isFaulty && fault.kind == Kind::Pieces)
            return SendPieces(direction.to, bytes);
        const std::uint64_t end = direction.position + bytes.size();
        if (!direction.isFaulty || end <= fault.offset)
            return Send(direction, bytes);
        const auto before = static_cast<std::size_t>(fault.offset - direction.position);
        direction.isFaulty = false;
        return Send(direction, bytes.substr(0, before)) && Strike(direction, bytes.substr(before));
    }

    bool Send(Direction& direction, const std::string& bytes) {
        direction.position += bytes.size();
        direction.lately = (direction.lately + bytes);
        if (direction.lately.size() > kAtOnce)
            direction.lately.erase(0, direction.lately.size() - kAtOnce);
        return SendAll(direction.to, bytes.data(), bytes.size());
    }

    bool SendPieces(int to, const std::string& bytes) {
        constexpr int kPauses = 20;
        for (std::size_t at = 0; at < bytes.size();) {
            const std::size_t size = std::min(bytes.size() - at, 1 + random() % fault.length);
            if (!SendAll(to, bytes.data() + at, size))
                return false;
            if (pauses < kPauses && random() % 4 == 0 && ++pauses > 0 && !Pause(std::chrono::milliseconds(1)))
                return false;
            at += size;
        }
        return true;
    }

    /// Injects the fault at the first of these bytes.
    bool Strike(Direction& direction, std::string bytes) {
        switch (fault.kind) {
        case Kind::Late:
            return Pause(fault.pause) && Send(direction, bytes);
        case Kind::Stop:
            while (Pause(std::chrono::hours(1))) {
            }
            return false;
        case Kind::Reset:
            ResetNow(client);
            ResetNow(server);
            [[fallthrough]];
        case Kind::Cut:
            End();
            return false;
        case Kind::HalfClose:
            shutdown(direction.to, SHUT_WR);
            return false;
        case Kind::Repeat: {
            const std::size_t again = std::min(fault.length, direction.lately.size());
            bytes.insert(0, direction.lately, direction.lately.size() - again, again);
            break;
        }
        case Kind::Lose:
            bytes.erase(0, fault.length);
            break;
        case Kind::Swap: {
            const std::size_t block = std::min(fault.length, bytes.size() / 2);
            std::rotate(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(block),
                        bytes.begin() + static_cast<std::ptrdiff_t>(2 * block));
            break;
        }
        case Kind::Corrupt:
            for (std::size_t spot = 0; spot < fault.length; ++spot) {
                char& byte = bytes[random() % bytes.size()];
                byte = static_cast<char>(byte ^ static_cast<char>(1 + random() % 255));
            }
            break;
        default:
            break;
        }
        return Send(direction, bytes);
    }

    int client;
    int server;
    LinkFault fault;
    std::mt19937 random; ///< used by the direction with the fault
    int pauses = 0;
    std::mutex guard; ///< of `ended`
    std::condition_variable wake;
    bool ended = false;
    std::thread there;
    std::thread back;
};

FaultyProxy::FaultyProxy(std::uint16_t serverPort) : serverPort(serverPort), listener(NewSocket()) {
    sockaddr_in place = Loopback(0);
    socklen_t size = sizeof place;
    if (bind(listener, reinterpret_cast<sockaddr*>(&place), size) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&place), &size) != 0 ||
        fcntl(listener, F_SETFL, O_NONBLOCK) != 0)
        throw std::runtime_error("the proxy cannot listen");
    port = ntohs(place.sin_port);
    acceptor = std::thread([this] {
        constexpr int kPollInterval = 50; // milliseconds until the end of the proxy is noticed
        while (!ended) {
            pollfd waiting{listener, POLLIN, 0};
            if (poll(&waiting, 1, kPollInterval) > 0)
                AcceptAll();
        }
    });
}

FaultyProxy::~FaultyProxy() {
    ended = true;
    acceptor.join();
    CloseAll();
    close(listener);
}

void FaultyProxy::Plan(std::vector<LinkFault> faults) {
    const std::lock_guard lock(guard);
    planned = std::move(faults);
    next = 0;
}

void FaultyProxy::CloseAll() {
    const std::lock_guard lock(guard);
    for (int waiting = -1; (waiting = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;)
        close(waiting);
    connections.clear();
}

void FaultyProxy::AcceptAll() {
    const std::lock_guard lock(guard);
    for (int client = -1; (client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;)
        Accept(client);
}

void FaultyProxy::Accept(int client) {
    const LinkFault fault = next < planned.size() ? planned[next] : LinkFault();
    ++next;
    const int server = NewSocket();
    const sockaddr_in place = Loopback(serverPort);
    const bool refused = fault.kind == LinkFault::Kind::Refuse;
    if (refused || connect(server, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) {
        ResetOnClose(client);
        close(client);
        close(server);
        return;
    }
    for (const int side : {client, server})
        SetOption(side, IPPROTO_TCP, TCP_NODELAY, 1);
    connections.push_back(std::make_unique<Connection>(client, server, fault));
}
