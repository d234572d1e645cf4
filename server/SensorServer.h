#pragma once

#include "server/DiscoveryResponder.h"
#include "server/HttpSession.h"
#include "server/Sensor.h"

#include <atomic>
#include <list>
#include <thread>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

/// Accepts connections and gives each a session in a thread of its own, up to a number of them; one more is
/// answered with status 503. Sessions wait on slow disks and slow clients without holding up each other.
class SensorServer final {
  public:
    /// @param io runs the accepting; sessions run beside it
    SensorServer(boost::asio::io_context& io, boost::asio::ip::tcp::acceptor& acceptor, const Sensor& sensor);
    SensorServer(const SensorServer&) = delete;
    SensorServer& operator=(const SensorServer&) = delete;
    /// Stops the sessions and waits for them.
    ~SensorServer();

  private:
    struct Running {
        explicit Running(const Sensor& sensor) : session(sensor) {}
        HttpSession session;
        std::thread thread;
        std::atomic<bool> ended = false;
    };

    void Accept();
    void Start(boost::asio::ip::tcp::socket socket);
    void JoinEnded();
    static void TurnAway(boost::asio::ip::tcp::socket& socket);

    boost::asio::io_context& io;
    boost::asio::ip::tcp::acceptor& acceptor;
    const Sensor& sensor;
    std::list<Running> sessions;
};
