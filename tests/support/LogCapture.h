#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// Captures the log lines written while the object lives; its end restores the log's target.
class LogCapture {
  public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The lines written since the last call, without their time stamp: "ERROR: No height map data". Without
    /// those that name the line of a text track with an error.
    [[nodiscard]] std::vector<std::string> Lines();
    /// The same including those lines: "INFO: Line 12: \"...\"".
    [[nodiscard]] std::vector<std::string> LinesWithPlaces();

  private:
    std::FILE* file;
    std::FILE* before;
};
