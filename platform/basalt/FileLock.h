#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FolderHandle.h"

#include <string>
#include <system_error>

/// A lock on a file of this user, released with the object, or by the system when the process ends in any
/// way.
class FileLock final {
  public:
    enum class State {
        Taken,
        HeldByAnother, ///< by another object of this process too
        Failed,        ///< the file or the lock is not available
    };

    /// Opens a file in a folder, or creates it private to this user, and tries to lock it, without waiting. A
    /// link, a file of another user and anything but a regular file are refused.
    FileLock(const FolderHandle& folder, const std::string& name);

    [[nodiscard]] State Result() const { return state; }
    /// The system's error for a lock that failed.
    [[nodiscard]] std::error_code Failure() const { return failure; }

  private:
    void Open(const FolderHandle& folder, const std::string& name);
    void Lock();
    [[nodiscard]] bool HasName();

    FileDescriptor file;
    State state = State::Failed;
    std::error_code failure;
};
