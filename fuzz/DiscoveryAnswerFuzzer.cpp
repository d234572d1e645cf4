#include "Check.h"
#include "basalt/bStatus.h"
#include "ostrasdk/VeInstance.h"
#include "server/DiscoveryResponder.h"
#include "wire/JsonText.h"

#include <array>

namespace {

using OstraSdk::VeInstance;

void CheckInstance(const VeInstance& instance) {
    constexpr unsigned kMaxPort = 65535;
    constexpr std::size_t kAddressCapacity = 16;
    Check(instance.GetSerialNumber() >= 0, "a serial number is not negative");
    Check(instance.GetControlPort() >= 1 && instance.GetControlPort() <= kMaxPort, "a port is in range");
    std::array<char, kAddressCapacity> address{};
    Check(bIpAddress_Format(instance.GetIpAddress(), address.data(), address.size()) == bOK,
          "an address can be shown");
    bIpAddress again;
    Check(bIpAddress_Parse(&again, address.data()) == bOK && again.octets == instance.GetIpAddress().octets,
          "an address reads back as it is written");
}

} // namespace

// Any bytes as a discovery answer and as a discovery request.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto* const text = reinterpret_cast<const char*>(data);
    static_cast<void>(DiscoveryResponder::IsRequest(text, size));
    const auto instance = VeInstance::FromAnswer({text, size});
    if (!instance)
        return 0;
    CheckInstance(*instance);
    const auto again = VeInstance::FromAnswer(OstraSdk::ToJsonText(instance->GetRecord()));
    Check(again.has_value(), "a parsed answer can be written again");
    Check(again->GetSerialNumber() == instance->GetSerialNumber() &&
              again->GetControlPort() == instance->GetControlPort() &&
              again->GetIpAddress().octets == instance->GetIpAddress().octets,
          "and means the same then");
    return 0;
}
