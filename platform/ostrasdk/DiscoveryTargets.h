#pragma once

#include <boost/asio/ip/udp.hpp>

#include <string_view>
#include <vector>

namespace OstraSdk {

/// The UDP port that servers listen on for a discovery.
constexpr unsigned short kDiscoveryPort = 3601;

/// The destinations of a discovery request: the broadcast address of every IPv4 interface that is up, and
/// loopback. The environment variable OSTRA_DISCOVERY replaces them all.
std::vector<boost::asio::ip::udp::endpoint> DiscoveryTargets();

/// Reads a list of `address` or `address:port`, separated by commas or blanks; other entries are skipped.
std::vector<boost::asio::ip::udp::endpoint> ParseDiscoveryTargets(std::string_view list);

} // namespace OstraSdk
