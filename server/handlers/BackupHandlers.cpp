#include "server/handlers/BackupHandlers.h"

#include "server/BackupArchive.h"
#include "server/RequestLog.h"
#include "server/RestoredBackup.h"
#include "server/Sensor.h"
#include "server/ServerIdentity.h"
#include "server/ServerOptions.h"
#include "server/http/HttpError.h"
#include "wire/CborWriter.h"

#include <algorithm>
#include <memory>

using OstraSdk::VeJson;

namespace {

/// Checks that a body names all workspaces in "contents", and that "data", if present, is a byte string.
/// @throws HttpError with status 400 otherwise
void RequireAllWorkspaces(const VeJson& body) {
    const auto* const contents =
        body.Has("contents") ? std::get_if<VeJson::Array>(&body.At("contents").Content()) : nullptr;
    if (contents == nullptr)
        throw HttpError(400, "\"contents\" is not a list.");
    const bool named = std::any_of(contents->begin(), contents->end(), [](const VeJson& each) {
        const auto* const text = std::get_if<std::string>(&each.Content());
        return text != nullptr && *text == "allWorkspaces";
    });
    if (!named)
        throw HttpError(400, "\"contents\" does not name \"allWorkspaces\".");
    if (body.Has("data") && !std::holds_alternative<VeJson::Binary>(body.At("data").Content()))
        throw HttpError(400, "\"data\" is not a byte string.");
}

} // namespace

Answer ArchiveHandler::Handle(Request& request) const {
    RequireAllWorkspaces(request.ReadBody());
    const auto archive = std::make_shared<const BackupArchive>(sensor.workspace.Open(), Info());
    sensor.log.NoteLeftOut("left out of the archive", archive->LinksLeftOut());
    std::string head = OstraSdk::CborWriter::BeforeBytes("data", archive->Size());
    const std::uint64_t size = head.size() + archive->Size();
    return {std::string(OstraSdk::kCborType), size, [archive, head = std::move(head)](const ByteSink& sink) {
                if (sink(head))
                    archive->Send(sink);
            }};
}

/// The content of the archive's "info.json".
std::string ArchiveHandler::Info() const {
    VeJson info;
    info.Set("serial", std::to_string(sensor.identity.SerialNumber()));
    info.Set("replay", sensor.replay.Enabled());
    return OstraSdk::ToJsonText(info);
}

std::uint64_t RestoreHandler::BodyLimit(const Request& request) const {
    // Only an archive in CBOR may be large.
    return request.HasCborBody() ? sensor.options.requestLimit : Handler::BodyLimit(request);
}

Answer RestoreHandler::Handle(Request& request) const {
    RestoredBackup backup(sensor.workspace);
    const VeJson body = request.ReadBody([&](OstraSdk::ByteString& bytes) {
        if (bytes.Key() == "data")
            backup.Unpack(bytes);
        return VeJson::Bytes();
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
