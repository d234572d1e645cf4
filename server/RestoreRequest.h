#pragma once

#include "server/CborCursor.h"
#include "server/Sensor.h"
#include "server/Workspace.h"

#include <cstdint>
#include <exception>
#include <optional>

/// Carries out "/system/commands/restore": the workspace in a backup archive takes the place of the served
/// one, as a whole or not at all.
class RestoreRequest final {
  public:
    explicit RestoreRequest(const Sensor& sensor) : sensor(sensor) {}

    /// Unpacks an archive beside the workspace while it arrives, each byte being written once. What is wrong
    /// with it is told by PutInPlace: first the whole of the request has to be looked at.
    /// @param body stands before the archive's `size` bytes
    void Unpack(CborCursor& body, std::uint64_t size);

    /// Puts what was unpacked in the workspace's place. Without this call, it is removed with the object.
    /// @throws RequestError with status 422 when the archive is refused; std::runtime_error when the disk
    /// fails.
    ///         Either way the served workspace and the replay mode are as before.
    void PutInPlace();

  private:
    const Sensor& sensor;
    std::optional<StagedFolder> staged;
    std::optional<bool> replay; ///< the mode that the archive notes
    std::exception_ptr failure;
};
