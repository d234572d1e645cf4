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
/// sockets that holds all that the client says before the server reads the first byte.
class FuzzedServer {
  public:
    using Reply = ReplyStream::Reply;

    FuzzedServer();

    /// Sends these bytes, ends the sending side and gives every reply. Checks on the way that the replies are
    /// well-formed, that none blames the server, and that nothing beside the workspace has changed.
    std::vector<Reply> Talk(const std::string& request);

    /// Whether the workspace is as it was at first.
    [[nodiscard]] bool IsAsAtFirst() const { return Served() == first; }
    /// What the workspace holds.
    [[nodiscard]] static Tree Served() { return TreeOf("served/space"); }
    /// Makes the workspace what it was at first.
    void Reset() const;

  private:
    [[nodiscard]] std::string Answers(const std::string& request);
    [[nodiscard]] static Tree Beside();

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
    Tree beside;
};
