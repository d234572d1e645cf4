#pragma once

#include <cstdio>
#include <string>

/// Where finished log lines go: one stream for the whole process.
class Output2FILE {
  public:
    /// The stream, standard error until somebody assigns another; null switches the log off.
    static std::FILE*& Target();

    /// Writes the text and flushes at once, so that a line survives whatever comes next.
    static void Write(const std::string& text);
};
