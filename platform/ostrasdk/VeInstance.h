#pragma once

#include "basalt/bIpAddress.h"
#include "wire/VeJson.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OstraSdk {

// The keys of a discovery answer.
inline const std::string kSerialNumber = "SerialNumber";
inline const std::string kDeviceModel = "DeviceModel";
inline const std::string kAppName = "AppName";
inline const std::string kAppId = "AppId";
inline const std::string kAppVersion = "AppVersion";
inline const std::string kControlPort = "ControlPort";
inline const std::string kWebPort = "WebPort";
inline const std::string kVdpPort = "VdpPort";
inline const std::string kAddress = "Address";
inline const std::string kMask = "Mask";
inline const std::string kGateway = "Gateway";
inline const std::string kDhcp = "Dhcp";
inline const std::string kIsRemote = "IsRemote";
inline const std::string kAddressConflict = "AddressConflict";

/// One server as described by its answer to a discovery.
class VeInstance {
  public:
    /// None when the answer is malformed: not a JSON object, without serial number, control port or address,
    /// or with a known key whose value is of the wrong type or out of range.
    static std::optional<VeInstance> FromAnswer(std::string_view answer);

    [[nodiscard]] std::int64_t GetSerialNumber() const { return serialNumber; }
    [[nodiscard]] const bIpAddress& GetIpAddress() const { return address; }
    [[nodiscard]] const unsigned int& GetControlPort() const { return controlPort; }
    /// The complete answer, whose members are named above; optional ones may be missing.
    [[nodiscard]] const VeJson& GetRecord() const { return record; }

  private:
    explicit VeInstance(VeJson answer);

    VeJson record;
    std::int64_t serialNumber = 0;
    bIpAddress address;
    unsigned int controlPort = 0;
};

} // namespace OstraSdk
