#include "ostrasdk/DiscoveryTargets.h"

#include "basalt/bIpAddress.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace OstraSdk {

namespace asio = boost::asio;
using Endpoint = asio::ip::udp::endpoint;

namespace {

std::optional<unsigned short> ParsePort(std::string_view text) {
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

std::optional<Endpoint> ParseTarget(std::string_view text) {
    const std::size_t colon = text.find(':');
    bIpAddress address;
    if (bIpAddress_Parse(&address, std::string(text.substr(0, colon)).c_str()) != bOK)
        return std::nullopt;
    const std::optional<unsigned short> port =
        colon == std::string_view::npos ? kDiscoveryPort : ParsePort(text.substr(colon + 1));
    if (!port)
        return std::nullopt;
    return Endpoint(asio::ip::address_v4(address.octets), *port);
}

/// The broadcast address of an interface, if it is up and has one.
std::optional<Endpoint> BroadcastOf(const ifaddrs& interface) {
    const bool broadcasts = (interface.ifa_flags & IFF_UP) != 0 && (interface.ifa_flags & IFF_BROADCAST) != 0;
    const sockaddr* const address = interface.ifa_broadaddr;
    if (!broadcasts || address == nullptr || address->sa_family != AF_INET)
        return std::nullopt;
    const auto number = ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr);
    return Endpoint(asio::ip::address_v4(number), kDiscoveryPort);
}

void AddOnce(std::vector<Endpoint>& targets, const Endpoint& target) {
    if (std::find(targets.begin(), targets.end(), target) == targets.end())
        targets.push_back(target);
}

std::vector<Endpoint> EveryInterface() {
    std::vector<Endpoint> targets{Endpoint(asio::ip::address_v4::loopback(), kDiscoveryPort)};
    ifaddrs* found = nullptr;
    if (getifaddrs(&found) != 0)
        return targets;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> interfaces(found, &freeifaddrs);
    for (const ifaddrs* interface = found; interface != nullptr; interface = interface->ifa_next)
        if (const auto target = BroadcastOf(*interface))
            AddOnce(targets, *target);
    return targets;
}

} // namespace

std::vector<Endpoint> ParseDiscoveryTargets(std::string_view list) {
    constexpr std::string_view kSeparators = ", \t\r\n";
    std::vector<Endpoint> targets;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find_first_of(kSeparators), list.size());
        if (const auto target = ParseTarget(list.substr(0, end)))
            AddOnce(targets, *target);
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return targets;
}

std::vector<Endpoint> DiscoveryTargets() {
    const char* const list = std::getenv("OSTRA_DISCOVERY");
    return list != nullptr ? ParseDiscoveryTargets(list) : EveryInterface();
}

} // namespace OstraSdk
