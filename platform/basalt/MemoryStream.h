#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

/// A file of the standard library that keeps what is written to it, for this process alone: in memory, or
/// where the system has no such files, in a temporary file without a name.
class MemoryStream {
  public:
    MemoryStream();
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;
    ~MemoryStream();

    /// Owned by this object; null when there is none to be had.
    [[nodiscard]] std::FILE* File() const { return file; }
    /// What was written so far.
    [[nodiscard]] std::string Text() const;

  private:
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* file = nullptr;
};
