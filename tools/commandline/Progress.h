#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// Shows the progress of a long operation on standard error, in one line that is updated and removed at the
/// end; only if standard error is a terminal, and only after the operation has taken 0.3 s.
class Progress final {
  public:
    /// @param what "Reading station.osbak"
    explicit Progress(std::string what);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Removes the line.
    ~Progress() { Clear(); }

    /// Begins the next part of the operation.
    void Begin(std::string part);
    /// @param total 0 when it is unknown
    void Update(std::int64_t done, std::int64_t total);
    /// Removes the line, so that other output can follow.
    void Clear();

  private:
    std::string what;
    bool isShown; ///< whether standard error is a terminal
    std::chrono::steady_clock::time_point next;
    bool hasLine = false;
};
