#pragma once

#include <atomic>
#include <optional>

class AccessRules;
class FaultPlan;
class RequestLog;
class ServerIdentity;
class Workspace;
struct ServerOptions;

/// Whether the sensor plays back its recording. Thread-safe.
class ReplayMode final {
  public:
    /// @param enabled the mode at start
    /// @param afterRestore what every restore sets the mode to; nullopt to use the restored archive's mode
    ReplayMode(bool enabled, std::optional<bool> afterRestore)
        : enabled(enabled), afterRestore(afterRestore) {}

    [[nodiscard]] bool Enabled() const { return enabled; }
    void Set(bool value) { enabled = value; }

    /// Sets the mode that follows from a restore.
    /// @param archived the archive's mode; nullopt when it has none, which leaves the mode unchanged
    void Restored(std::optional<bool> archived) {
        if (afterRestore)
            enabled = *afterRestore;
        else if (archived)
            enabled = *archived;
    }

  private:
    std::atomic<bool> enabled;
    std::optional<bool> afterRestore;
};

/// What all sessions of a server share. Every member outlives the sessions and is thread-safe.
struct Sensor {
    const ServerOptions& options;
    const ServerIdentity& identity;
    const AccessRules& access;
    Workspace& workspace;
    ReplayMode& replay;
    FaultPlan& faults;
    RequestLog& log;
};
