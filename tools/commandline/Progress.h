#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// Shows on standard error how far a long job is, in one line that is written over and removed at the end;
/// only where standard error is a terminal, and only once a job takes long enough to wonder.
class Progress final {
  public:
    /// @param what "Reading station.osbak"
    explicit Progress(std::string what);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Removes the line.
    ~Progress() { Clear(); }

    /// Begins another part of the job.
    void Begin(std::string part);
    /// @param total 0 when it is unknown
    void Update(std::int64_t done, std::int64_t total);
    /// Removes the line, so that something else can be written.
    void Clear();

  private:
    std::string what;
    bool isShown; ///< at all
    std::chrono::steady_clock::time_point next;
    bool hasLine = false;
};
