#pragma once

#include "basalt/bIpAddress.h"

#include <optional>
#include <vector>

/// An IPv4 address of this computer.
struct NetworkInterface {
    bIpAddress address;
    bIpAddress mask;
    std::optional<bIpAddress> broadcast; ///< reaches all neighbours; none where there is no such address
};

/// The addresses of all interfaces that are in use, in the system's order; none when they cannot be found
/// out.
[[nodiscard]] std::vector<NetworkInterface> NetworkInterfaces();
