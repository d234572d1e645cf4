#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// GET /system/info: who this server is, as discovery says it too.
class InfoHandler final : public Handler {
  public:
    explicit InfoHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
