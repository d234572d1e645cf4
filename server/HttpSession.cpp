#include "HttpSession.h"

#include "ArchiveRequest.h"
#include "ReplayMode.h"
#include "ReplyWriter.h"
#include "RequestLog.h"
#include "RestoreRequest.h"
#include "ServerIdentity.h"
#include "ServerOptions.h"
#include "Workspace.h"

#include <algorithm>
#include <array>
#include <exception>

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
    bodySize = 0;
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
    BodySpool body(sensor.workspace.Parent(), bodySize);
    request.ReadBody(body, BodyLimit(action, request));
    if (fault.status)
        throw RequestError(*fault.status, "This failure was asked for.");
    return Answer(action, request, body);
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

bool HttpSession::Answer(Action action, const RequestReader& request, const BodySpool& body) {
    const bool takesBody = action != Action::Info && action != Action::ReadReplay;
    const RequestMembers members =
        takesBody ? RequestMembers::Read(request.ContentType(), body) : RequestMembers();
    if (action == Action::Archive)
        return AnswerArchive(members, request);
    const std::string json = Carry(action, members, body);
    return Reply(request, 200, [&](ReplyWriter& reply) { reply.Json(200, json); });
}

bool HttpSession::AnswerArchive(const RequestMembers& members, const RequestReader& request) {
    if (!members.allWorkspaces)
        throw RequestError(400, "\"contents\" does not name \"allWorkspaces\".");
    const ArchiveRequest archive(sensor);
    return Reply(request, 200, [&](ReplyWriter& reply) { archive.Reply(reply); });
}

std::string HttpSession::Carry(Action action, const RequestMembers& members, const BodySpool& body) const {
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
        RestoreRequest(sensor).Run(body, *members.data);
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
    sensor.log.Note(request.Verb(), request.Path(), bodySize, status);
    if (fault.delay.count() > 0 && !stream.Pause(fault.delay))
        return false;
    stream.ExpireAfter(sensor.options.transferTimeout);
    ReplyWriter reply(stream, fault, request.KeepAlive(), request.WantsDigest());
    write(reply);
    if (reply.Complete() && !reply.KeepsAlive())
        stream.CloseGently();
    return reply.KeepsAlive();
}
