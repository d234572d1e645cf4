#pragma once

#include "FuzzFolder.h"
#include "ReplyStream.h"
#include "server/FaultPlan.h"
#include "server/RequestLog.h"
#include "server/Sensor.h"
#include "server/ServerIdentity.h"
#include "server/ServerOptions.h"
#include "server/Workspace.h"
#include "server/handlers/Router.h"
#include "server/http/AccessRules.h"

#include <memory>
#include <string>
#include <vector>

/// The server's own request handling over a small workspace, without a network: a connection is a pair of
/// sockets that buffers everything the client sends before the server reads the first byte.
class FuzzedServer {
  public:
    using Reply = ReplyStream::Reply;

    FuzzedServer();

    /// Sends these bytes, shuts down the sending side and returns every reply. Checks that the replies are
    /// well-formed, that none is a server error (5xx), and that nothing outside the workspace has changed.
    std::vector<Reply> Talk(const std::string& request);

    /// Whether the workspace is in its initial state.
    [[nodiscard]] bool IsAsAtFirst() const { return Served() == first; }
    /// The content of the workspace.
    [[nodiscard]] static Tree Served() { return TreeOf("served/space"); }
    /// Restores the initial workspace.
    void Reset() const;

  private:
    [[nodiscard]] std::string Answers(const std::string& request);
    [[nodiscard]] static Tree Outside();

    FuzzFolder folder;
    ServerOptions options;
    ServerIdentity identity;
    std::unique_ptr<Workspace> workspace;
    ReplayMode replay;
    FaultPlan faults;
    RequestLog log;
    AccessRules access;
    Sensor sensor;
    Router router;
    Tree first;
    Tree outside;
};
