#pragma once

#include "wire/VeJson.h"

#include <cstdint>
#include <string>

/// The identity of this server: the members of a discovery reply, which a client also reads when it connects.
class ServerIdentity final {
  public:
    ServerIdentity(std::uint32_t serialNumber, std::string model, std::uint16_t controlPort);

    [[nodiscard]] std::uint32_t SerialNumber() const { return serialNumber; }

    /// @param address the dotted IPv4 address by which the client reaches this server
    [[nodiscard]] OstraSdk::VeJson Members(const std::string& address) const;

  private:
    std::uint32_t serialNumber;
    std::string model;
    std::uint16_t controlPort;
};
