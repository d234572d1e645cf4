#include "server/handlers/RestoreHandler.h"

#include "server/RequestLog.h"
#include "server/RestoredBackup.h"
#include "server/Sensor.h"
#include "server/ServerOptions.h"
#include "server/http/HttpError.h"

std::uint64_t RestoreHandler::BodyLimit(const Request& request) const {
    // Only an archive in CBOR may be large.
    return request.HasCborBody() ? sensor.options.requestLimit : Handler::BodyLimit(request);
}

Answer RestoreHandler::Handle(Request& request) const {
    RestoredBackup backup(sensor.workspace);
    const OstraSdk::VeJson body = request.ReadBody([&](OstraSdk::ByteString& bytes) {
        if (bytes.Key() == "data")
            backup.Unpack(bytes);
        return OstraSdk::VeJson::Bytes();
    });
    RequireAllWorkspaces(body);
    if (!body.Has("data"))
        throw HttpError(400, "\"data\" is missing.");
    const RestoredBackup::Replaced replaced = backup.PutInPlace();
    sensor.log.NoteLeftOut("not in the restored workspace", replaced.links);
    if (!replaced.isKept)
        sensor.log.NoteRemark("the workspace that was replaced could not be kept");
    sensor.replay.Restored(backup.Replay());
    return Answer::Json({});
}
