#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// PUT /replay/playback: has the sensor play its recording back, or not.
class SetReplayHandler final : public Handler {
  public:
    explicit SetReplayHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
