#include "basalt/bIpAddress.h"

#include <cstring>

// The system's headers are in this order only.
#include <winsock2.h>

#include <iphlpapi.h>

namespace {

bIpAddress AddressOf(ULONG number) { // in the order of the network
    bIpAddress address;
    std::memcpy(address.octets.data(), &number, address.octets.size());
    return address;
}

void Add(const IP_ADAPTER_ADDRESSES& adapter, std::vector<NetworkInterface>& found) {
    const bool broadcasts = adapter.IfType != IF_TYPE_SOFTWARE_LOOPBACK && adapter.IfType != IF_TYPE_PPP &&
                            adapter.IfType != IF_TYPE_TUNNEL;
    for (const auto* each = adapter.FirstUnicastAddress; each != nullptr; each = each->Next) {
        if (each->Address.lpSockaddr->sa_family != AF_INET)
            continue;
        ULONG mask = 0;
        ConvertLengthToIpv4Mask(each->OnLinkPrefixLength, &mask);
        const ULONG address = reinterpret_cast<const sockaddr_in*>(each->Address.lpSockaddr)->sin_addr.s_addr;
        found.push_back({.address = AddressOf(address),
                         .mask = AddressOf(mask),
                         .broadcast = broadcasts ? std::optional(AddressOf(address | ~mask)) : std::nullopt});
    }
}

} // namespace

std::vector<NetworkInterface> NetworkInterfaces() {
    constexpr ULONG kUnused = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER |
                              GAA_FLAG_SKIP_FRIENDLY_NAME;
    std::vector<std::uint64_t> memory(std::size_t{2} * 1024); // aligned for the records
    std::vector<NetworkInterface> found;
    ULONG result = ERROR_BUFFER_OVERFLOW;
    auto size = static_cast<ULONG>(memory.size() * sizeof memory[0]);
    for (int tries = 0; tries < 4 && result == ERROR_BUFFER_OVERFLOW; ++tries) {
        memory.resize(size / sizeof memory[0] + 1); // what was too small says how much it takes
        result = GetAdaptersAddresses(AF_INET, kUnused, nullptr,
                                      reinterpret_cast<IP_ADAPTER_ADDRESSES*>(memory.data()), &size);
    }
    if (result != ERROR_SUCCESS)
        return found;
    const auto* const first = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(memory.data());
    for (const auto* each = first; each != nullptr; each = each->Next)
        if (each->OperStatus == IfOperStatusUp)
            Add(*each, found);
    return found;
}
