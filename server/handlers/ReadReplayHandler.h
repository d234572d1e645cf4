#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// GET /replay/playback: whether the sensor plays its recording back.
class ReadReplayHandler final : public Handler {
  public:
    explicit ReadReplayHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
