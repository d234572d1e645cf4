#pragma once

#include "server/Sensor.h"
#include "server/http/Session.h"

#include <atomic>
#include <list>
#include <thread>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

/// Accepts connections and serves each in its own thread, up to a limit, so that sessions with slow disks or
/// slow clients do not delay each other.
///
/// One client address may hold half of the places at most. When no place is free, the connection that has
/// been idle longest is closed for the new one; when none is idle, the new one is answered with status 503.
class Listener final {
  public:
    using Socket = boost::asio::ip::tcp::socket;

    /// The number of file descriptors that a server with this connection limit may need.
    static std::size_t DescriptorsFor(unsigned connections);

    /// @param io accepts the connections; sessions run in other threads
    Listener(boost::asio::io_context& io, boost::asio::ip::tcp::acceptor& acceptor, const Sensor& sensor,
             const Router& router);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    /// Stops the sessions and waits for them.
    ~Listener();

  private:
    struct Running {
        Running(const Sensor& sensor, const Router& router, Socket socket, boost::asio::ip::address peer)
            : session(sensor, router, std::move(socket)), peer(std::move(peer)) {}
        Session session;
        boost::asio::ip::address peer;
        std::thread thread;
        std::atomic<bool> ended = false;
    };

    void Accept();
    void Accepted(Socket socket);
    [[nodiscard]] bool MakePlace(const boost::asio::ip::address& peer);
    [[nodiscard]] bool CloseIdle(const boost::asio::ip::address* peer);
    void Start(Socket socket, const boost::asio::ip::address& peer);
    void JoinEnded();
    static void Reject(Socket& socket);

    boost::asio::io_context& io;
    boost::asio::ip::tcp::acceptor& acceptor;
    const Sensor& sensor;
    const Router& router;
    boost::asio::steady_timer again;
    std::list<Running> sessions; ///< oldest first
};
