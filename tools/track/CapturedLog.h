#pragma once

#include "basalt/MemoryStream.h"

#include <cstdio>
#include <string>

/// Takes the lines that the converters log while the object lives: their only way to say why they refuse a
/// file.
class CapturedLog final {
  public:
    CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;
    ~CapturedLog();

    /// The message of the first ERROR line, without time stamp and the operation's tag; empty when there is
    /// none.
    [[nodiscard]] std::string FirstError() const;

  private:
    std::FILE* before;
    MemoryStream stream;
};
