#pragma once

#include "basalt/AtomicFile.h"

#include <string>

/// What WriteTrack and UpdatePath return.
constexpr int kWritten = 0;
constexpr int kOriginalNotReadable = 1;
constexpr int kTargetNotWritable = 2;

/// Puts a finished target in place. @return kWritten, or kTargetNotWritable after an ERROR line.
[[nodiscard]] int CommitTarget(AtomicFile& file, const std::string& path);
