#include "server/handlers/InfoHandler.h"

#include "server/Sensor.h"
#include "server/ServerIdentity.h"

Answer InfoHandler::Handle(Request& request) const {
    request.PassOverBody();
    return Answer::Json(sensor.identity.Members(request.LocalAddress()));
}
