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

QJsonObject ServerIdentity::Members(const std::string& address) const {
    return {
        {QStringLiteral("SerialNumber"), static_cast<double>(serialNumber)},
        {QStringLiteral("DeviceModel"), QString::fromStdString(model)},
        {QStringLiteral("AppName"), QStringLiteral("ostra-server")},
        {QStringLiteral("AppId"), QStringLiteral("corvane.ostra-server")},
        {QStringLiteral("AppVersion"), QStringLiteral(CORVANE_VERSION)},
        {QStringLiteral("ControlPort"), controlPort},
        {QStringLiteral("WebPort"), 0},
        {QStringLiteral("VdpPort"), 0},
        {QStringLiteral("Address"), QString::fromStdString(address)},
        {QStringLiteral("Mask"), QString::fromStdString(MaskOf(address))},
        {QStringLiteral("Gateway"), QStringLiteral("0.0.0.0")},
        {QStringLiteral("Dhcp"), false},
        {QStringLiteral("IsRemote"), false},
        {QStringLiteral("AddressConflict"), false},
    };
}
