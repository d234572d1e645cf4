#include "basalt/posix/FileState.h"

FileFacts FactsOf(const struct stat& state) {
    return {.kind = KindOf(state.st_mode),
            .size = state.st_size,
            .modified = state.st_mtim.tv_sec,
            .modifiedFraction = state.st_mtim.tv_nsec,
            .permissions = state.st_mode & kPermissionBits,
            .id = state.st_ino};
}

namespace {

/// Whether the last call failed because the file system does not have what was to be set.
bool IsUnknownToTheFileSystem() {
    return errno == EPERM || errno == ENOTSUP || errno == ENOSYS;
}

} // namespace

std::error_code Describe(int descriptor, const FileFacts& facts) {
    const timespec times[2] = {{0, UTIME_OMIT}, {facts.modified, facts.modifiedFraction}};
    if (fchmod(descriptor, facts.permissions & kPermissionBits) != 0 && !IsUnknownToTheFileSystem())
        return LastError();
    if (futimens(descriptor, times) != 0 && !IsUnknownToTheFileSystem())
        return LastError();
    return {};
}

FileKind KindOf(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileKind::File;
    case S_IFDIR:
        return FileKind::Folder;
    case S_IFLNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}
