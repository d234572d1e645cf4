#include "server/ServerIdentity.h"

#include <memory>
#include <utility>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

namespace {

std::string Dotted(const sockaddr* address) {
    if (address == nullptr || address->sa_family != AF_INET)
        return {};
    char text[INET_ADDRSTRLEN] = {};
    const auto* internet = reinterpret_cast<const sockaddr_in*>(address);
    return inet_ntop(AF_INET, &internet->sin_addr, text, sizeof(text)) == nullptr ? std::string() : text;
}

/// The network mask of the interface that has this address.
std::string MaskOf(const std::string& address) {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return "0.0.0.0";
    const auto release = [](ifaddrs* list) { freeifaddrs(list); };
    const std::unique_ptr<ifaddrs, decltype(release)> interfaces(first);
    for (const ifaddrs* each = interfaces.get(); each != nullptr; each = each->ifa_next) {
        if (Dotted(each->ifa_addr) == address)
            return Dotted(each->ifa_netmask);
    }
    return "0.0.0.0";
}

} // namespace

ServerIdentity::ServerIdentity(std::uint32_t serialNumber, std::string model, std::uint16_t controlPort)
    : serialNumber(serialNumber), model(std::move(model)), controlPort(controlPort) {
}

OstraSdk::VeJson ServerIdentity::Members(const std::string& address) const {
    OstraSdk::VeJson members;
    members.Set("SerialNumber", serialNumber);
    members.Set("DeviceModel", model);
    members.Set("AppName", "ostra-server");
    members.Set("AppId", "corvane.ostra-server");
    members.Set("AppVersion", CORVANE_VERSION);
    members.Set("ControlPort", controlPort);
    members.Set("WebPort", 0);
    members.Set("VdpPort", 0);
    members.Set("Address", address);
    members.Set("Mask", MaskOf(address));
    members.Set("Gateway", "0.0.0.0");
    members.Set("Dhcp", false);
    members.Set("IsRemote", false);
    members.Set("AddressConflict", false);
    return members;
}
