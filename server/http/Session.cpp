#include "server/http/Session.h"

#include "server/RequestLog.h"
#include "server/ServerOptions.h"
#include "server/http/AccessRules.h"
#include "server/http/ReplyWriter.h"

#include <algorithm>
#include <exception>

void Session::Run() noexcept {
    try {
        while (ServeOne() && BecomeIdle()) {
        }
    } catch (const std::exception& failure) {
        sensor.log.Note("-", failure.what(), 0, 500);
    }
    phase = Phase::Finished;
    stream.Close();
}

/// @return false when the listener has closed the session meanwhile
bool Session::BecomeIdle() {
    Phase answered = Phase::Answered;
    return phase.compare_exchange_strong(answered, Phase::Idle);
}

bool Session::CloseIdle() {
    Phase now = phase;
    while (now == Phase::Idle || now == Phase::Answered) { // the one may become the other meanwhile
        if (!phase.compare_exchange_weak(now, Phase::Finished))
            continue;
        if (now == Phase::Idle)
            stream.Stop();
        return true;
    }
    return false;
}

bool Session::ServeOne() {
    const ServerOptions& options = sensor.options;
    stream.ExpireAfter(options.idleTimeout);
    Phase idle = Phase::Idle;
    if ((ahead.IsEmpty() && !stream.AwaitInput()) || !phase.compare_exchange_strong(idle, Phase::Busy))
        return false;
    stream.ExpireAfter(std::min(options.idleTimeout, options.headTimeout));
    fault = {};
    Request request(stream, ahead);
    try {
        if (!request.ReadHead())
            return false;
        const Answer answer = Serve(request);
        return Reply(request, 200, [&](ReplyWriter& reply) {
            reply.Head(200, answer.contentType, answer.size);
            answer.send([&](std::string_view bytes) { return reply.Body(bytes); });
            reply.End();
        });
    } catch (const HttpError& refusal) {
        return Refuse(request, refusal);
    } catch (const std::exception& failure) {
        return Refuse(request, HttpError(500, failure.what()));
    }
}

Answer Session::Serve(Request& request) {
    fault = sensor.faults.Next(request.Path());
    sensor.access.Check(request);
    const Handler& handler = router.Find(request.Verb(), request.Path());
    request.BeginBody(std::min(sensor.options.requestLimit, handler.BodyLimit(request)),
                      sensor.options.transferTimeout);
    if (fault.status) {
        request.SkipBody();
        throw HttpError(*fault.status, "This failure was requested.");
    }
    return handler.Handle(request);
}

bool Session::Refuse(const Request& request, const HttpError& refusal) {
    return Reply(request, refusal.Status(), [&](ReplyWriter& reply) { reply.Error(refusal); });
}

template<typename Write>
bool Session::Reply(const Request& request, unsigned status, const Write& write) {
    sensor.log.Note(request.Verb(), request.Path(), request.BytesRead(), status);
    if (fault.delay.count() > 0 && !stream.Pause(fault.delay))
        return false;
    stream.ExpireAfter(sensor.options.transferTimeout);
    const bool keepAlive = request.KeepsAlive();
    ReplyWriter reply(stream, fault, {keepAlive, request.WantsDigest(), request.Verb() == "HEAD"},
                      [&] { phase = keepAlive ? Phase::Answered : Phase::Finished; });
    write(reply);
    if (reply.IsComplete() && !reply.KeepsAlive())
        stream.CloseGently();
    return reply.KeepsAlive();
}
