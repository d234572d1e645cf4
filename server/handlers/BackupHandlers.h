#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// POST /system/commands/archive: the workspace's backup archive, read from the disk while it is sent.
class ArchiveHandler final : public Handler {
  public:
    explicit ArchiveHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    [[nodiscard]] std::string Info() const;

    const Sensor& sensor;
};

/// POST /system/commands/restore: replaces the served workspace by the one in a backup archive, atomically.
class RestoreHandler final : public Handler {
  public:
    explicit RestoreHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] std::uint64_t BodyLimit(const Request& request) const override;
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
