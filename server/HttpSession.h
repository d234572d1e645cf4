#pragma once

#include "server/FaultPlan.h"
#include "server/RequestError.h"
#include "server/RequestMembers.h"
#include "server/RequestReader.h"
#include "server/RestoreRequest.h"
#include "server/Sensor.h"
#include "server/TimedStream.h"

#include <string>

#include <boost/beast/core/flat_buffer.hpp>

/// Serves one connection, request by request, in the thread that calls Run.
class HttpSession final {
  public:
    explicit HttpSession(const Sensor& sensor) : sensor(sensor) {}

    /// The connection; accepted into before Run is called.
    TimedStream& Stream() { return stream; }

    /// Serves until the client leaves, a deadline passes or the stream is stopped; never throws.
    void Run() noexcept;

  private:
    enum class Action { Archive, Restore, ReadReplay, SetReplay, Info };

    [[nodiscard]] bool ServeOne();
    [[nodiscard]] bool Serve(RequestReader& request);
    [[nodiscard]] static Action ActionFor(const std::string& verb, const std::string& path);
    [[nodiscard]] std::uint64_t BodyLimit(Action action, const RequestReader& request) const;
    [[nodiscard]] bool Answer(Action action, RequestReader& request);
    [[nodiscard]] static RequestMembers ReadMembers(RequestReader& request, const ByteStringSink& takeData);
    [[nodiscard]] bool AnswerArchive(const RequestMembers& members, const RequestReader& request);
    [[nodiscard]] std::string Carry(Action action, const RequestMembers& members,
                                    RestoreRequest& restore) const;
    [[nodiscard]] bool Refuse(const RequestReader& request, const RequestError& refusal);
    template<typename Write>
    [[nodiscard]] bool Reply(const RequestReader& request, unsigned status, const Write& write);

    const Sensor& sensor;
    TimedStream stream;
    boost::beast::flat_buffer buffer;
    Fault fault; ///< of the request being served
};
