#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FolderHandle.h"

#include <string>
#include <system_error>

/// A lock on a file of this user's, which the system takes from its holder with the object, or with the
/// process, however that ends.
class FileLock final {
  public:
    enum class State {
        Taken,
        HeldByAnother, ///< by another object of this process too
        Failed,        ///< there is no such file, or the system gives no lock on it
    };

    /// Opens a file in a folder, or makes it, private to this user, and tries to lock it, without waiting. A
    /// link, a file of another user and whatever is no regular file are refused.
    FileLock(const FolderHandle& folder, const std::string& name);

    [[nodiscard]] State Result() const { return state; }
    /// The system's reason for a lock that failed.
    [[nodiscard]] std::error_code Failure() const { return failure; }

  private:
    void Open(const FolderHandle& folder, const std::string& name);
    void Lock();
    [[nodiscard]] bool HasName();

    FileDescriptor file;
    State state = State::Failed;
    std::error_code failure;
};
