#pragma once

#include "ostrasdk/VeInstance.h"

#include <cstdint>
#include <vector>

namespace OstraSdk {

/// Finds the sensor servers of the networks that this machine is on. One thread at a time.
class VeDiscoveryClient {
  public:
    /// Asks once and collects the answers on the calling thread; those of an earlier call are forgotten.
    /// @param timeout microseconds; no less than a quarter of a second and no more than one second is taken.
    /// Answers that are not well-formed, or name an address that no single machine can have, are ignored, and
    /// so is an interface that nothing can be sent through.
    /// Throws Ve::Exception with status bERROR_CONNECTION when there is no network at all.
    void BlockingDiscover(std::int64_t timeout);

    /// One entry for each serial number and address, in the order in which the first answers came; no more
    /// than a thousand.
    [[nodiscard]] const std::vector<VeInstance>& InstanceList() const { return instances; }

  private:
    std::vector<VeInstance> instances;
};

} // namespace OstraSdk
