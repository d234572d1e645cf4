#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FileOwnership.h"
#include "basalt/FolderHandle.h"
#include "basalt/InputFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>

/// A new file in a folder. It has a hidden name (".corvane-" and six letters) until all of it is written, so
/// that a truncated file is never mistaken for a complete one, even after a kill.
class HiddenFile final {
  public:
    /// Makes the file; IsOpen says whether that was possible.
    /// @param folder outlives this object
    /// @param permissions less the process's mask
    HiddenFile(const FolderHandle& folder, unsigned permissions);
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;
    /// Removes the file unless it was kept.
    ~HiddenFile();

    [[nodiscard]] bool IsOpen() const { return file.IsOpen(); }
    /// The system's error of the first step that failed.
    [[nodiscard]] std::error_code Failure() const { return failure; }

    /// Appends bytes. @return false when not all of them could be written; the file is then unusable
    [[nodiscard]] bool Write(const void* data, std::size_t size);
    /// Appends as much as possible of another file, from its reading position on, without copying it through
    /// this process: the file system may share it. The rest, often nothing and at worst everything, must be
    /// read and written. @return the bytes appended
    [[nodiscard]] std::int64_t Append(const InputFile& source);
    /// Gives the file the owner, group and permissions of another one.
    [[nodiscard]] bool TakeOver(const FileOwnership& ownership);
    /// Gives the file permissions and a time of modification, as far as its file system has them; the time
    /// remains only if nothing is written later.
    [[nodiscard]] bool Describe(const FileFacts& facts);
    /// Syncs what was written to the disk.
    [[nodiscard]] bool Sync();
    /// Closes the file and gives it its name; a file that has the name is replaced.
    /// @return false when the system reports late that bytes are lost, or the name cannot be set; the file is
    ///         then removed
    [[nodiscard]] bool Keep(const std::string& name);

  private:
    [[nodiscard]] bool Note(bool succeeded);

    const FolderHandle& folder;
    std::string hidden;
    FileDescriptor file;
    std::error_code failure;
};
