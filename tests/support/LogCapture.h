#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// Takes the log lines written while the object lives; the log's target is set back with it.
class LogCapture {
  public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The lines written since the last call, without their time stamp: "ERROR: No height map data". Without
    /// those that say which line of a text track an error is about.
    [[nodiscard]] std::vector<std::string> Lines();
    /// The same with those lines: "INFO: Line 12: \"...\"".
    [[nodiscard]] std::vector<std::string> LinesWithPlaces();

  private:
    std::FILE* file;
    std::FILE* before;
};
