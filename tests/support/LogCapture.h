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

    /// The lines written since the last call, without their time stamp: "ERROR: No height map data".
    [[nodiscard]] std::vector<std::string> Lines();

  private:
    std::FILE* file;
    std::FILE* before;
};
