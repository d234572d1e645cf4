#pragma once

#include "server/handlers/Handler.h"

struct Sensor;

/// GET /system/info: this server's identity, the same as in discovery.
class InfoHandler final : public Handler {
  public:
    explicit InfoHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};

/// GET /replay/playback: whether the sensor plays back its recording.
class ReadReplayHandler final : public Handler {
  public:
    explicit ReadReplayHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};

/// PUT /replay/playback: turns the playback of the recording on or off.
class SetReplayHandler final : public Handler {
  public:
    explicit SetReplayHandler(const Sensor& sensor) : sensor(sensor) {}
    [[nodiscard]] Answer Handle(Request& request) const override;

  private:
    const Sensor& sensor;
};
