#include "basalt/posix/FileState.h"

FileFacts FactsOf(const struct stat& state) {
    return {.kind = KindOf(state.st_mode),
            .size = state.st_size,
            .modified = state.st_mtim.tv_sec,
            .modifiedFraction = state.st_mtim.tv_nsec,
            .permissions = state.st_mode & kPermissionBits};
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
