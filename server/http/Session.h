#pragma once

#include "server/FaultPlan.h"
#include "server/Sensor.h"
#include "server/handlers/Router.h"
#include "server/http/HttpError.h"
#include "server/http/Request.h"
#include "wire/TimedStream.h"

#include <atomic>
#include <string>

/// Serves one connection, request by request, in the thread that calls Run.
class Session final {
  public:
    enum class Phase {
        Idle,     ///< waits for a request
        Busy,     ///< reads a request or answers it
        Answered, ///< sends the last bytes of a reply, and then becomes idle
        Finished, ///< ends as soon as the last bytes of a reply are sent
    };

    Session(const Sensor& sensor, const Router& router, OstraSdk::TimedStream::Socket socket)
        : sensor(sensor), router(router), stream(std::move(socket)) {}

    /// Serves until the client disconnects, a deadline passes or the session is stopped; never throws.
    void Run() noexcept;

    /// May be called from other threads.
    [[nodiscard]] Phase CurrentPhase() const { return phase; }
    /// Ends the session if it is idle or about to become idle. May be called from other threads.
    /// @return whether it was
    [[nodiscard]] bool CloseIdle();
    /// Ends the session soon. May be called from other threads.
    void Stop() { stream.Stop(); }

  private:
    [[nodiscard]] bool BecomeIdle();
    [[nodiscard]] bool ServeOne();
    [[nodiscard]] Answer Serve(Request& request);
    [[nodiscard]] bool Refuse(const Request& request, const HttpError& refusal);
    template<typename Write>
    [[nodiscard]] bool Reply(const Request& request, unsigned status, const Write& write);

    const Sensor& sensor;
    const Router& router;
    OstraSdk::TimedStream stream;
    OstraSdk::ReadAhead ahead;
    Fault fault; ///< of the request being served
    std::atomic<Phase> phase = Phase::Idle;
};
