#include "server/handlers/ArchiveHandler.h"

#include "server/BackupArchive.h"
#include "server/RequestLog.h"
#include "server/Sensor.h"
#include "server/ServerIdentity.h"
#include "wire/CborWriter.h"

#include <memory>

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

/// What the archive says about its server.
std::string ArchiveHandler::Info() const {
    OstraSdk::VeJson info;
    info.Set("serial", std::to_string(sensor.identity.SerialNumber()));
    info.Set("replay", sensor.replay.Enabled());
    return OstraSdk::ToJsonText(info);
}
