#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// POST /system/commands/archive: the backup archive of the workspace, read from the disk while it is sent.
class ArchiveHandler final : public Handler {
  public:
    explicit ArchiveHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    [[nodiscard]] std::string Info() const;

    const Sensor& sensor;
};
