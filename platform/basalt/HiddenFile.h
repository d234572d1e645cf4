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
/// that a cut file is never mistaken for a complete one, not even after a kill.
class HiddenFile final {
  public:
    /// Makes the file; IsOpen says whether that was possible.
    /// @param folder outlives this object
    /// @param permissions the process's mask is taken off them
    HiddenFile(const FolderHandle& folder, unsigned permissions);
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;
    /// Removes the file unless it was kept.
    ~HiddenFile();

    [[nodiscard]] bool IsOpen() const { return file.IsOpen(); }
    /// The system's reason for the first step that failed.
    [[nodiscard]] std::error_code Failure() const { return failure; }

    /// Appends bytes. @return false when not all of them could be written; then the file is of no more use
    [[nodiscard]] bool Write(const void* data, std::size_t size);
    /// Appends what can be appended of another file, from its place of reading on, without it coming through
    /// this process: the file system may share it. What is left, often nothing and at worst everything, is to
    /// be read and written. @return the bytes appended
    [[nodiscard]] std::int64_t Append(const InputFile& source);
    /// Gives the file to whom another one belongs, with that one's permissions.
    [[nodiscard]] bool TakeOver(const FileOwnership& ownership);
    /// Gives the file permissions and a time of modification, as far as its file system has them; the time
    /// stays only when nothing is written later.
    [[nodiscard]] bool Describe(const FileFacts& facts);
    /// Brings what was written to the disk.
    [[nodiscard]] bool Sync();
    /// Closes the file and gives it its name; a file that has the name is replaced.
    /// @return false when the system reports late that bytes are lost, or the name cannot be given; the file
    ///         is removed then
    [[nodiscard]] bool Keep(const std::string& name);

  private:
    [[nodiscard]] bool Note(bool succeeded);

    const FolderHandle& folder;
    std::string hidden;
    FileDescriptor file;
    std::error_code failure;
};
