#pragma once

#include "basalt/bStatus.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// An IPv4 address: its four numbers in the order in which they are written.
struct bIpAddress {
    std::array<std::uint8_t, 4> octets{};

    bool operator==(const bIpAddress&) const = default;
};

/// The characters that the longest address text takes, the terminating zero included.
constexpr std::size_t bIpAddress_TEXT_SIZE = 16;

/// Reads a dotted IPv4 address: four decimal numbers from 0 to 255 without leading zeros (which some systems
/// read as octal), and nothing around them.
/// @return 1; bERROR_PARAMETER when the text is not such an address or a pointer is null; `*address` is then
///         unchanged.
bStatus bIpAddress_Parse(bIpAddress* address, const char* text);

/// Writes the address in dotted form with a terminating zero.
/// @return 1; bERROR_PARAMETER when `text` is null or `capacity` is too small.
bStatus bIpAddress_Format(bIpAddress address, char* text, std::size_t capacity);

/// An IPv4 address of this computer.
struct NetworkInterface {
    bIpAddress address;
    bIpAddress mask;
    std::optional<bIpAddress> broadcast; ///< reaches all neighbours; none if there is no such address
};

/// The addresses of all interfaces that are up, in the system's order; none when they cannot be read.
[[nodiscard]] std::vector<NetworkInterface> NetworkInterfaces();
