#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// POST /system/commands/restore: the workspace in a backup archive takes the place of the served one,
/// completely or not at all.
class RestoreHandler final : public Handler {
  public:
    explicit RestoreHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] std::uint64_t BodyLimit(const Request& request) const override;
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
