#include "ostrasdk/VeInstance.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"

#include <limits>

namespace OstraSdk {

namespace {

constexpr std::int64_t kMaxPort = 65535;

[[noreturn]] void ThrowOutOfRange(const std::string& key) {
    throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "VeInstance::FromAnswer",
                        "The member \"%s\" is out of range.", key.c_str());
}

std::int64_t NumberIn(const VeJson& record, const std::string& key, std::int64_t least,
                      std::int64_t largest) {
    const auto number = record.At(key).Get<std::int64_t>();
    if (number < least || number > largest)
        ThrowOutOfRange(key);
    return number;
}

bIpAddress AddressIn(const VeJson& record, const std::string& key) {
    bIpAddress address;
    const auto text = record.At(key).Get<std::string>();
    const bool endsEarly = text.find('\0') != std::string::npos; // for calls that take a C string
    if (endsEarly || bIpAddress_Parse(&address, text.c_str()) != bOK)
        ThrowOutOfRange(key);
    return address;
}

/// Throws for a member whose value is not of its key's type and range.
void CheckOtherMembers(const VeJson& record) {
    for (const std::string& key : {kDeviceModel, kAppName, kAppId, kAppVersion})
        if (record.Has(key))
            static_cast<void>(record.At(key).Get<std::string>());
    for (const std::string& key : {kWebPort, kVdpPort})
        if (record.Has(key))
            NumberIn(record, key, 0, kMaxPort);
    for (const std::string& key : {kMask, kGateway})
        if (record.Has(key) && !record.At(key).Get<std::string>().empty())
            AddressIn(record, key);
    for (const std::string& key : {kDhcp, kIsRemote, kAddressConflict})
        if (record.Has(key))
            static_cast<void>(record.At(key).Get<bool>());
}

} // namespace

VeInstance::VeInstance(VeJson answer)
    : record(std::move(answer)),
      serialNumber(NumberIn(record, kSerialNumber, 0, std::numeric_limits<std::int64_t>::max())),
      address(AddressIn(record, kAddress)),
      controlPort(static_cast<unsigned int>(NumberIn(record, kControlPort, 1, kMaxPort))) {
    CheckOtherMembers(record);
}

std::optional<VeInstance> VeInstance::FromAnswer(std::string_view answer) {
    try {
        return VeInstance(VeJson::ParseString(answer));
    } catch (const Ve::Exception&) {
        return std::nullopt;
    }
}

} // namespace OstraSdk
