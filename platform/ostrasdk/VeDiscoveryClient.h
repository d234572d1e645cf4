#pragma once

#include "ostrasdk/VeInstance.h"

#include <cstdint>
#include <vector>

namespace OstraSdk {

/// Finds the sensor servers of the networks that this machine is on. One thread at a time.
class VeDiscoveryClient {
  public:
    /// Asks once and collects the answers on the calling thread; those of an earlier call are discarded.
    /// @param timeout microseconds; clamped to the range from a quarter of a second to one second. Answers
    /// that are not well-formed, or name an address that no single machine can have, are ignored, and so is
    /// an interface that nothing can be sent through. Throws Ve::Exception with status bERROR_CONNECTION when
    /// there is no network at all.
    void BlockingDiscover(std::int64_t timeout);

    /// One entry for each serial number and address, in the order of the first answers; at most a thousand.
    [[nodiscard]] const std::vector<VeInstance>& InstanceList() const { return instances; }

  private:
    std::vector<VeInstance> instances;
};

} // namespace OstraSdk
