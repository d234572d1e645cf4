#include "server/SensorServer.h"

#include "server/ServerOptions.h"

#include <chrono>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>

using boost::asio::ip::tcp;

SensorServer::SensorServer(boost::asio::io_context& io, tcp::acceptor& acceptor, const Sensor& sensor)
    : io(io), acceptor(acceptor), sensor(sensor) {
    Accept();
}

SensorServer::~SensorServer() {
    for (Running& each : sessions)
        each.session.Stream().Stop();
    for (Running& each : sessions) {
        if (each.thread.joinable())
            each.thread.join();
    }
}

void SensorServer::Accept() {
    JoinEnded();
    acceptor.async_accept([this](const boost::system::error_code& error, tcp::socket socket) {
        if (error == boost::asio::error::operation_aborted || !acceptor.is_open())
            return;
        if (!error && sessions.size() >= sensor.options.connectionLimit)
            TurnAway(socket);
        else if (!error)
            Start(std::move(socket));
        Accept();
    });
}

void SensorServer::Start(tcp::socket socket) {
    Running& running = sessions.emplace_back(sensor);
    // A socket lives in the context that it was accepted in; the session's own one may go before that.
    tcp::socket own(running.session.Stream().Context());
    own.assign(tcp::v4(), socket.release());
    running.session.Stream().Accept(std::move(own));
    running.thread = std::thread([this, &running] {
        running.session.Run();
        running.ended = true;
        boost::asio::post(io, [this] { JoinEnded(); });
    });
}

void SensorServer::JoinEnded() {
    sessions.remove_if([](Running& each) {
        if (!each.ended)
            return false;
        each.thread.join();
        return true;
    });
}

void SensorServer::TurnAway(tcp::socket& socket) {
    static constexpr char kBusy[] = "HTTP/1.1 503 Service Unavailable\r\nContent-Type: application/json\r\n"
                                    "Content-Length: 35\r\nConnection: close\r\n\r\n"
                                    "{\"error\":\"Too many are connected.\"}";
    boost::system::error_code ignored; // whoever is turned away and gone already needs no answer
    socket.send(boost::asio::buffer(kBusy, sizeof(kBusy) - 1), 0, ignored);
    socket.shutdown(tcp::socket::shutdown_send, ignored);
}
