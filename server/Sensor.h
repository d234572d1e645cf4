#pragma once

class AccessRules;
class FaultPlan;
class ReplayMode;
class RequestLog;
class ServerIdentity;
class Workspace;
struct ServerOptions;

/// What all sessions of a server share. Everything named here outlives them and may be used by several
/// threads.
struct Sensor {
    const ServerOptions& options;
    const ServerIdentity& identity;
    const AccessRules& access;
    Workspace& workspace;
    ReplayMode& replay;
    FaultPlan& faults;
    RequestLog& log;
};
