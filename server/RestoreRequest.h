#pragma once

#include "BodySpool.h"
#include "RequestMembers.h"
#include "Sensor.h"

/// Carries out "/system/commands/restore": the workspace in a backup archive takes the place of the served
/// one, as a whole or not at all.
class RestoreRequest final {
  public:
    explicit RestoreRequest(const Sensor& sensor) : sensor(sensor) {}

    /// @param archive where the backup archive lies in `body`
    /// @throws RequestError with status 422 when the archive is refused; std::runtime_error when the disk
    /// fails.
    ///         Either way the served workspace and the replay mode are as before.
    void Run(const BodySpool& body, const ByteRange& archive) const;

  private:
    const Sensor& sensor;
};
