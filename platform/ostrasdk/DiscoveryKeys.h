#pragma once

#include <string>

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

} // namespace OstraSdk
