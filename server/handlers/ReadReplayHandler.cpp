#include "server/handlers/ReadReplayHandler.h"

#include "server/Sensor.h"

Answer ReadReplayHandler::Handle(Request& request) const {
    request.PassOverBody();
    OstraSdk::VeJson mode;
    mode.Set("enabled", sensor.replay.Enabled());
    return Answer::Json(mode);
}
