#include "server/handlers/SetReplayHandler.h"

#include "server/Sensor.h"
#include "server/http/HttpError.h"

Answer SetReplayHandler::Handle(Request& request) const {
    const OstraSdk::VeJson body = request.ReadBody();
    const bool* const enabled =
        body.Has("enabled") ? std::get_if<bool>(&body.At("enabled").Content()) : nullptr;
    if (enabled == nullptr)
        throw HttpError(400, "\"enabled\" is neither true nor false.");
    sensor.replay.Set(*enabled);
    return Answer::Json({});
}
