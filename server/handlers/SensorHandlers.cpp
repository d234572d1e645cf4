#include "server/handlers/SensorHandlers.h"

#include "server/Sensor.h"
#include "server/ServerIdentity.h"
#include "server/http/HttpError.h"

Answer InfoHandler::Handle(Request& request) const {
    request.SkipBody();
    return Answer::Json(sensor.identity.Members(request.LocalAddress()));
}

Answer ReadReplayHandler::Handle(Request& request) const {
    request.SkipBody();
    OstraSdk::VeJson mode;
    mode.Set("enabled", sensor.replay.Enabled());
    return Answer::Json(mode);
}

Answer SetReplayHandler::Handle(Request& request) const {
    const OstraSdk::VeJson body = request.ReadBody();
    const bool* const enabled =
        body.Has("enabled") ? std::get_if<bool>(&body.At("enabled").Content()) : nullptr;
    if (enabled == nullptr)
        throw HttpError(400, "\"enabled\" is neither true nor false.");
    sensor.replay.Set(*enabled);
    return Answer::Json({});
}
