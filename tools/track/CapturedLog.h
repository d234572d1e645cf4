#pragma once

#include "basalt/MemoryStream.h"

#include <cstdio>
#include <string>

/// Captures the log lines of the converters as long as the object lives: the only place where they give a
/// reason for rejecting a file.
class CapturedLog final {
  public:
    CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;
    ~CapturedLog();

    /// The message of the first ERROR line, without time stamp and operation; empty if there is none.
    [[nodiscard]] std::string FirstError() const;

  private:
    std::FILE* before;
    MemoryStream stream;
};
