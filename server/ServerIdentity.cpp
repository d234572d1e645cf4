#include "server/ServerIdentity.h"

#include "basalt/bIpAddress.h"

#include <array>
#include <utility>

namespace {

std::string Dotted(bIpAddress address) {
    std::array<char, bIpAddress_TEXT_SIZE> text{};
    return bIpAddress_Format(address, text.data(), text.size()) == bOK ? text.data() : "";
}

/// The network mask of the interface that has this address.
std::string MaskOf(const std::string& address) {
    for (const NetworkInterface& each : NetworkInterfaces())
        if (Dotted(each.address) == address)
            return Dotted(each.mask);
    return Dotted({});
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
