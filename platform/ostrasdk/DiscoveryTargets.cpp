#include "ostrasdk/DiscoveryTargets.h"

#include "basalt/bIpAddress.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>

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

void AddOnce(std::vector<Endpoint>& targets, const Endpoint& target) {
    if (std::find(targets.begin(), targets.end(), target) == targets.end())
        targets.push_back(target);
}

std::vector<Endpoint> EveryInterface() {
    std::vector<Endpoint> targets{Endpoint(asio::ip::address_v4::loopback(), kDiscoveryPort)};
    for (const NetworkInterface& each : NetworkInterfaces())
        if (each.broadcast)
            AddOnce(targets, Endpoint(asio::ip::address_v4(each.broadcast->octets), kDiscoveryPort));
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
