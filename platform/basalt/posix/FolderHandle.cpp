#include "basalt/FolderHandle.h"

#include "basalt/posix/FileState.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

} // namespace

FolderHandle::FolderHandle(int opened)
    : descriptor(opened), failure(opened < 0 ? LastError() : std::error_code()) {
}

FolderHandle::FolderHandle(const std::string& path, Links links)
    : FolderHandle(open(path.c_str(), kFolderFlags | (links == Links::Refused ? O_NOFOLLOW : 0))) {
}

FolderHandle FolderHandle::OpenFolder(const std::string& name) const {
    return FolderHandle(openat(Number(), name.c_str(), kFolderFlags | O_NOFOLLOW));
}

std::error_code FolderHandle::MakeFolder(const std::string& name, unsigned permissions) const {
    return mkdirat(Number(), name.c_str(), permissions) == 0 ? std::error_code() : LastError();
}

std::error_code FolderHandle::Ask(const std::string& name, FileFacts* facts) const {
    struct stat state {};
    if (fstatat(Number(), name.c_str(), &state, AT_SYMLINK_NOFOLLOW) != 0)
        return LastError();
    *facts = FactsOf(state);
    return {};
}

/// A folder opened only as a path (O_PATH) can neither be changed nor synced.
FileDescriptor FolderHandle::OpenItself() const {
    return FileDescriptor(openat(Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

std::error_code FolderHandle::Describe(const FileFacts& facts) const {
    const FileDescriptor folder = OpenItself();
    return folder.IsOpen() ? ::Describe(folder.Number(), facts) : LastError();
}

std::error_code FolderHandle::RemoveFile(const std::string& name) const {
    return unlinkat(Number(), name.c_str(), 0) == 0 ? std::error_code() : LastError();
}

std::error_code FolderHandle::RenameToFree(const std::string& name, const std::string& free) const {
    if (renameat2(Number(), name.c_str(), Number(), free.c_str(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return LastError();
    // For a file system without RENAME_NOREPLACE: link never replaces an existing name.
    if (linkat(Number(), name.c_str(), Number(), free.c_str(), 0) != 0)
        return LastError();
    return RemoveFile(name);
}

std::error_code FolderHandle::Sync() const {
    const FileDescriptor folder = OpenItself();
    if (!folder.IsOpen())
        return errno == EACCES ? std::error_code() : LastError();
    const bool synced = fsync(folder.Number()) == 0 || errno == EINVAL || errno == ENOTSUP;
    return synced ? std::error_code() : LastError();
}
