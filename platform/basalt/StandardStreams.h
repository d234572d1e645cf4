#pragma once

#include <cstdio>
#include <string>

/// Opens a file of the standard library whose writes all go to its end; programs started from this one do not
/// inherit it. @return null when it cannot be opened; errno has the reason
[[nodiscard]] std::FILE* OpenToAppend(const std::string& path);

/// Makes writing to a pipe that nobody reads any more a failure of the write, and no end of the process.
void IgnoreBrokenPipes();

/// Has standard output and error take bytes as they are: a result is the same on every system.
void KeepBytesOfOutput();
