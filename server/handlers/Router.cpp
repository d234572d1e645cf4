#include "server/handlers/Router.h"

#include "server/handlers/BackupHandlers.h"
#include "server/handlers/SensorHandlers.h"
#include "server/http/HttpError.h"

Router::Router(const Sensor& sensor) {
    routes.push_back({"POST", "/system/commands/archive", std::make_unique<ArchiveHandler>(sensor)});
    routes.push_back({"POST", "/system/commands/restore", std::make_unique<RestoreHandler>(sensor)});
    routes.push_back({"GET", "/replay/playback", std::make_unique<ReadReplayHandler>(sensor)});
    routes.push_back({"PUT", "/replay/playback", std::make_unique<SetReplayHandler>(sensor)});
    routes.push_back({"GET", "/system/info", std::make_unique<InfoHandler>(sensor)});
}

const Handler& Router::Find(std::string_view verb, std::string_view path) const {
    std::string allowedVerbs;
    for (const Route& route : routes) {
        if (path == route.path && verb == route.verb)
            return *route.handler;
        if (path == route.path)
            allowedVerbs += (allowedVerbs.empty() ? "" : ", ") + route.verb;
    }
    if (!allowedVerbs.empty())
        throw HttpError(405, "This path does not allow this verb.", "Allow", allowedVerbs);
    throw HttpError(404, "Unknown path.");
}
