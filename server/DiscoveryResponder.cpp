#include "server/DiscoveryResponder.h"

#include "basalt/Exception.h"
#include "wire/JsonText.h"

#include <boost/asio/buffer.hpp>

using boost::asio::ip::address_v4;
using boost::asio::ip::udp;

DiscoveryResponder::DiscoveryResponder(boost::asio::io_context& io, const address_v4& address,
                                       std::uint16_t port, const ServerIdentity& identity)
    : socket(io, udp::v4()), identity(identity) {
    const bool everywhere = !address.is_loopback();
    if (everywhere)
        socket.set_option(udp::socket::reuse_address(true));
    socket.bind(udp::endpoint(everywhere ? address_v4::any() : address, port));
    Receive();
}

void DiscoveryResponder::Close() {
    boost::system::error_code ignored;
    socket.close(ignored);
}

bool DiscoveryResponder::IsRequest(const char* bytes, std::size_t size) {
    try {
        const OstraSdk::VeJson request = OstraSdk::FromJsonText({bytes, size});
        return request.At("ostra").Get<std::string>() == "discover" &&
               request.At("version").Get<std::int64_t>() == 1;
    } catch (const Ve::Exception&) { // not JSON, or something else
        return false;
    }
}

void DiscoveryResponder::Receive() {
    socket.async_receive_from(boost::asio::buffer(datagram), sender,
                              [this](const boost::system::error_code& error, std::size_t size) {
                                  if (error == boost::asio::error::operation_aborted || !socket.is_open())
                                      return;
                                  if (!error)
                                      Answer(size);
                                  Receive();
                              });
}

void DiscoveryResponder::Answer(std::size_t size) {
    constexpr std::size_t kMaxRequestSize = 2047; // without parsing more: no request is that long
    if (size > kMaxRequestSize || !IsRequest(datagram.data(), size))
        return;
    const std::string answer = OstraSdk::ToJsonText(identity.Members(AddressTowards(sender)));
    boost::system::error_code lost; // like any datagram; the client repeats its request
    socket.send_to(boost::asio::buffer(answer), sender, 0, lost);
}

std::string DiscoveryResponder::AddressTowards(const udp::endpoint& client) const {
    const address_v4 bound = socket.local_endpoint().address().to_v4();
    if (!bound.is_unspecified())
        return bound.to_string();
    // Connecting a datagram socket sends nothing, but makes the system choose its local address.
    boost::asio::io_context own;
    udp::socket probe(own, udp::v4());
    boost::system::error_code error;
    probe.connect(client, error);
    const udp::endpoint here = error ? socket.local_endpoint() : probe.local_endpoint(error);
    return here.address().to_string();
}
