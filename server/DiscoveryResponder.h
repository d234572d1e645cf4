#pragma once

#include "server/ServerIdentity.h"

#include <cstddef>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

/// Answers the discovery datagrams of clients; anything else that arrives is ignored.
class DiscoveryResponder final {
  public:
    /// Starts listening. Bound to loopback, it receives from loopback only; for any other address it listens
    /// on all of them, since a socket bound to one address receives no broadcasts.
    /// @throws boost::system::system_error when the port cannot be bound
    DiscoveryResponder(boost::asio::io_context& io, const boost::asio::ip::address_v4& address,
                       std::uint16_t port, const ServerIdentity& identity);

    [[nodiscard]] boost::asio::ip::udp::endpoint Endpoint() const { return socket.local_endpoint(); }
    void Close();

    /// Whether a datagram is a discovery request.
    [[nodiscard]] static bool IsRequest(const char* bytes, std::size_t size);

  private:
    void Receive();
    void Answer(std::size_t size);
    [[nodiscard]] std::string AddressTowards(const boost::asio::ip::udp::endpoint& client) const;

    /// The largest datagram: one that did not fit would fail in the middle of a receive on Windows, and the
    /// library would end the receive twice.
    static constexpr std::size_t kMaxDatagramSize = 65507;

    boost::asio::ip::udp::socket socket;
    const ServerIdentity& identity;
    boost::asio::ip::udp::endpoint sender;
    std::string datagram = std::string(kMaxDatagramSize, '\0');
};
