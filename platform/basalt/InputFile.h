#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FileFacts.h"
#include "basalt/FolderHandle.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>

/// A regular file that is read from its start.
class InputFile final {
  public:
    /// Not open.
    InputFile() = default;
    /// Opens the file at a path, through symbolic links.
    explicit InputFile(const char* path);
    /// Opens a file in a folder; a symbolic link is refused.
    InputFile(const FolderHandle& folder, const std::string& name);

    [[nodiscard]] bool IsOpen() const { return file.IsOpen(); }
    /// For the system's calls.
    [[nodiscard]] int Number() const { return file.Number(); }
    /// The system's error of the last failure.
    [[nodiscard]] std::error_code Failure() const { return failure; }

    /// Reads up to `capacity` bytes; fewer only at the end of the file. @return false on failure
    [[nodiscard]] bool Read(void* data, std::size_t capacity, std::size_t* count);
    /// Sets the reading position. @return false on failure
    [[nodiscard]] bool MoveTo(std::int64_t byte);
    /// Advances the reading position by `size` bytes, not beyond the end.
    /// @return the bytes actually skipped; -1 on failure
    [[nodiscard]] std::int64_t Skip(std::int64_t size);
    /// @return false on failure
    [[nodiscard]] bool Ask(FileFacts* facts);

  private:
    explicit InputFile(int opened);

    FileDescriptor file;
    std::error_code failure = std::make_error_code(std::errc::bad_file_descriptor);
};
