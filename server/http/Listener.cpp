#include "server/http/Listener.h"

#include "server/ServerOptions.h"

#include <algorithm>
#include <chrono>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>

using boost::asio::ip::address;

namespace {

/// Finished sessions hold no place, but their number must be limited too.
std::size_t MaxSessions(std::size_t places) {
    constexpr std::size_t kFinished = 16;
    return 2 * places + kFinished;
}

bool HasPlace(const Session& session) {
    return session.CurrentPhase() != Session::Phase::Finished;
}

} // namespace

std::size_t Listener::DescriptorsFor(unsigned connections) {
    constexpr std::size_t kFilesPerPlace = 1;
    constexpr std::size_t kOthers = 128; // the ports, the log, the folders down to a deep file
    return MaxSessions(connections) + connections * kFilesPerPlace + kOthers;
}

Listener::Listener(boost::asio::io_context& io, boost::asio::ip::tcp::acceptor& acceptor,
                   const Sensor& sensor, const Router& router)
    : io(io), acceptor(acceptor), sensor(sensor), router(router), again(io) {
    Accept();
}

Listener::~Listener() {
    for (Running& each : sessions)
        each.session.Stop();
    for (Running& each : sessions) {
        if (each.thread.joinable())
            each.thread.join();
    }
}

void Listener::Accept() {
    acceptor.async_accept([this](const boost::system::error_code& error, Socket socket) {
        if (error == boost::asio::error::operation_aborted || !acceptor.is_open())
            return;
        if (!error) {
            Accepted(std::move(socket));
            return Accept();
        }
        // For example, no descriptors are left: waiting clients are served when some are free again.
        constexpr std::chrono::milliseconds kPause(100);
        again.expires_after(kPause);
        again.async_wait([this](const boost::system::error_code& stopped) {
            if (!stopped)
                Accept();
        });
    });
}

void Listener::Accepted(Socket socket) {
    boost::system::error_code disconnected;
    const address peer = socket.remote_endpoint(disconnected).address();
    if (disconnected)
        return;
    JoinEnded();
    if (MakePlace(peer))
        Start(std::move(socket), peer);
    else
        Reject(socket);
}

bool Listener::MakePlace(const address& peer) {
    const std::size_t places = sensor.options.connectionLimit;
    const std::size_t placesOfOne = std::max<std::size_t>(1, places / 2);
    if (sessions.size() >= MaxSessions(places))
        return false;
    std::size_t taken = 0;
    std::size_t takenByPeer = 0;
    for (const Running& each : sessions) {
        taken += HasPlace(each.session) ? 1 : 0;
        takenByPeer += HasPlace(each.session) && each.peer == peer ? 1 : 0;
    }
    if (takenByPeer >= placesOfOne)
        return CloseIdle(&peer);
    return taken < places || CloseIdle(nullptr);
}

/// Closes the connection that has been idle longest. @param peer only one from this address; null for any
bool Listener::CloseIdle(const address* peer) {
    return std::any_of(sessions.begin(), sessions.end(), [&](Running& each) {
        return (peer == nullptr || each.peer == *peer) && each.session.CloseIdle();
    });
}

void Listener::Start(Socket socket, const address& peer) {
    Running& running = sessions.emplace_back(sensor, router, std::move(socket), peer);
    try {
        running.thread = std::thread([this, &running] {
            running.session.Run();
            running.ended = true;
            boost::asio::post(io, [this] { JoinEnded(); });
        });
    } catch (const std::system_error&) {
        sessions.pop_back(); // no thread available: the connection is closed, and the client may try again
    }
}

void Listener::JoinEnded() {
    sessions.remove_if([](Running& each) {
        if (!each.ended)
            return false;
        each.thread.join();
        return true;
    });
}

void Listener::Reject(Socket& socket) {
    static constexpr char kBusy[] = "HTTP/1.1 503 Service Unavailable\r\nContent-Type: application/json\r\n"
                                    "Content-Length: 33\r\nConnection: close\r\n\r\n"
                                    "{\"error\":\"Too many connections.\"}";
    boost::system::error_code ignored; // a rejected client that has disconnected needs no answer
    socket.send(boost::asio::buffer(kBusy, sizeof(kBusy) - 1), 0, ignored);
    socket.shutdown(Socket::shutdown_send, ignored);
}
