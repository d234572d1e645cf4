#pragma once

#include "server/Sensor.h"
#include "server/http/Session.h"

#include <atomic>
#include <list>
#include <thread>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

/// Accepts connections and gives each a session in a thread of its own, up to a number of them. Sessions wait
/// on slow disks and slow clients without holding up each other.
///
/// One address gets half of the places at most. Where places are short, the connection that has waited
/// longest for its next request gives way to the new one; when there is none, the new one is answered with
/// status 503.
class Listener final {
  public:
    using Socket = boost::asio::ip::tcp::socket;

    /// How many descriptors a server of so many connections may need.
    static std::size_t DescriptorsFor(unsigned connections);

    /// @param io runs the accepting; sessions run beside it
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
    std::list<Running> sessions; ///< the oldest first
};
