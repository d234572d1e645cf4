#include "ostrasdk/VeSystem.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"

namespace OstraSdk {

VeSystem::VeSystem(const bIpAddress& address, unsigned int controlPort)
    : address(address), client(address, controlPort) {
}

void VeSystem::Connect() {
    constexpr std::int64_t kTimeout = 5'000'000;
    connected = false;
    const VeRequestResponse answer = client.Read("/system/info", VeJson(), VeJson()).GetResponse(kTimeout);
    if (!answer.Payload().IsObject())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "VeSystem::Connect",
                            "The server does not identify itself.");
    connected = true;
}

void VeSystem::Disconnect() {
    connected = false;
}

} // namespace OstraSdk
