#include "basalt/bIpAddress.h"

#include <cstring>
#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace {

std::optional<bIpAddress> AddressOf(const sockaddr* address) {
    if (address == nullptr || address->sa_family != AF_INET)
        return std::nullopt;
    bIpAddress found;
    const auto* const internet = reinterpret_cast<const sockaddr_in*>(address);
    std::memcpy(found.octets.data(), &internet->sin_addr, found.octets.size());
    return found;
}

} // namespace

std::vector<NetworkInterface> NetworkInterfaces() {
    std::vector<NetworkInterface> found;
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return found;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> interfaces(first, &freeifaddrs);
    for (const ifaddrs* each = first; each != nullptr; each = each->ifa_next) {
        const std::optional<bIpAddress> address = AddressOf(each->ifa_addr);
        if (!address || (each->ifa_flags & IFF_UP) == 0)
            continue;
        const bool broadcasts = (each->ifa_flags & IFF_BROADCAST) != 0;
        found.push_back({.address = *address,
                         .mask = AddressOf(each->ifa_netmask).value_or(bIpAddress()),
                         .broadcast = broadcasts ? AddressOf(each->ifa_broadaddr) : std::nullopt});
    }
    return found;
}
