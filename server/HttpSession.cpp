#include "server/HttpSession.h"

#include "server/ArchiveRequest.h"
#include "server/ReplayMode.h"
#include "server/ReplyWriter.h"
#include "server/RequestLog.h"
#include "server/ServerIdentity.h"
#include "server/ServerOptions.h"
#include "server/Workspace.h"

#include <algorithm>
#include <array>
#include <exception>
#include <optional>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

std::string JsonText(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

void HttpSession::Run() noexcept {
    try {
        while (ServeOne()) {
        }
    } catch (const std::exception& failure) {
        sensor.log.Note("-", failure.what(), 0, 500);
    }
    stream.Close();
}

bool HttpSession::ServeOne() {
    RequestReader request(stream, buffer, {sensor.options.idleTimeout, sensor.options.transferTimeout});
    fault = {};
    try {
        return request.ReadHead() && Serve(request);
    } catch (const RequestError& refusal) {
        return Refuse(request, refusal);
    } catch (const std::exception& failure) {
        return Refuse(request, RequestError(500, failure.what()));
    }
}

bool HttpSession::Serve(RequestReader& request) {
    fault = sensor.faults.Next(request.Path());
    const Action action = ActionFor(request.Verb(), request.Path());
    request.BeginBody(BodyLimit(action, request));
    if (fault.status) {
        request.EndBody();
        throw RequestError(*fault.status, "This failure was asked for.");
    }
    return Answer(action, request);
}

HttpSession::Action HttpSession::ActionFor(const std::string& verb, const std::string& path) {
    struct Route {
        const char* verb;
        const char* path;
        Action action;
    };
    static constexpr std::array kRoutes{
        Route{"POST", "/system/commands/archive", Action::Archive},
        Route{"POST", "/system/commands/restore", Action::Restore},
        Route{"GET", "/replay/playback", Action::ReadReplay},
        Route{"PUT", "/replay/playback", Action::SetReplay},
        Route{"GET", "/system/info", Action::Info},
    };
    std::string allowedVerbs;
    for (const Route& route : kRoutes) {
        if (path == route.path && verb == route.verb)
            return route.action;
        if (path == route.path)
            allowedVerbs += (allowedVerbs.empty() ? "" : ", ") + std::string(route.verb);
    }
    if (!allowedVerbs.empty())
        throw RequestError(405, "This verb does not fit the path.", allowedVerbs);
    throw RequestError(404, "There is nothing under this path.");
}

std::uint64_t HttpSession::BodyLimit(Action action, const RequestReader& request) const {
    constexpr std::uint64_t kSmall = std::uint64_t{64} * 1024;
    const std::uint64_t limit = sensor.options.requestLimit;
    const bool holdsArchive = action == Action::Restore && RequestMembers::IsCbor(request.ContentType());
    return holdsArchive ? limit : std::min(limit, kSmall);
}

bool HttpSession::Answer(Action action, RequestReader& request) {
    RestoreRequest restore(sensor);
    RequestMembers members;
    if (action == Action::Info || action == Action::ReadReplay)
        request.EndBody();
    else
        members = ReadMembers(request, [&](CborCursor& body, std::uint64_t size) {
            if (action == Action::Restore)
                restore.Unpack(body, size);
        });
    if (action == Action::Archive)
        return AnswerArchive(members, request);
    const std::string json = Carry(action, members, restore);
    return Reply(request, 200, [&](ReplyWriter& reply) { reply.Json(200, json); });
}

/// Reads the whole body. That its bytes are not those that were sent comes before what is wrong with them.
RequestMembers HttpSession::ReadMembers(RequestReader& request, const ByteStringSink& takeData) {
    RequestMembers members;
    std::optional<RequestError> refusal;
    try {
        members = RequestMembers::Read(request, takeData);
    } catch (const RequestError& error) {
        refusal = error;
    }
    request.EndBody();
    if (refusal)
        throw RequestError(*refusal);
    return members;
}

bool HttpSession::AnswerArchive(const RequestMembers& members, const RequestReader& request) {
    if (!members.allWorkspaces)
        throw RequestError(400, "\"contents\" does not name \"allWorkspaces\".");
    const ArchiveRequest archive(sensor);
    return Reply(request, 200, [&](ReplyWriter& reply) { archive.Reply(reply); });
}

std::string HttpSession::Carry(Action action, const RequestMembers& members, RestoreRequest& restore) const {
    if (action == Action::Info)
        return JsonText(sensor.identity.Members(stream.LocalAddress()));
    if (action == Action::ReadReplay)
        return JsonText({{QStringLiteral("enabled"), sensor.replay.Enabled()}});
    if (action == Action::SetReplay) {
        if (!members.enabled)
            throw RequestError(400, "\"enabled\" is missing.");
        sensor.replay.Set(*members.enabled);
    } else {
        if (!members.allWorkspaces)
            throw RequestError(400, "\"contents\" does not name \"allWorkspaces\".");
        if (!members.data)
            throw RequestError(400, "\"data\" is missing.");
        restore.PutInPlace();
    }
    return "{}";
}

bool HttpSession::Refuse(const RequestReader& request, const RequestError& refusal) {
    return Reply(request, refusal.Status(), [&](ReplyWriter& reply) {
        reply.Allow(refusal.AllowedVerbs());
        reply.Error(refusal.Status(), refusal.what());
    });
}

template<typename Write>
bool HttpSession::Reply(const RequestReader& request, unsigned status, const Write& write) {
    sensor.log.Note(request.Verb(), request.Path(), request.BytesRead(), status);
    if (fault.delay.count() > 0 && !stream.Pause(fault.delay))
        return false;
    stream.ExpireAfter(sensor.options.transferTimeout);
    ReplyWriter reply(stream, fault, request.KeepAlive(), request.WantsDigest());
    if (request.Verb() == "HEAD")
        reply.LeaveBodyOut(); // a client would take it for the next reply
    write(reply);
    if (reply.Complete() && !reply.KeepsAlive())
        stream.CloseGently();
    return reply.KeepsAlive();
}
