#include "basalt/FolderReader.h"

#include "basalt/posix/FileState.h"

#include <dirent.h>
#include <fcntl.h>

namespace {

DIR* OpenBeneath(const FolderHandle& folder) {
    FileDescriptor list(openat(folder.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    DIR* const opened = list.IsOpen() ? fdopendir(list.Number()) : nullptr;
    if (opened != nullptr)
        static_cast<void>(list.Release()); // closed with the list
    return opened;
}

/// False for an entry that has vanished meanwhile; errno has the reason of any other failure.
bool AskKind(DIR* folder, const dirent& entry, FileKind* kind) {
    *kind = KindOf(static_cast<mode_t>(DTTOIF(entry.d_type)));
    if (entry.d_type != DT_UNKNOWN)
        return true;
    struct stat state {};
    if (fstatat(dirfd(folder), entry.d_name, &state, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    *kind = KindOf(state.st_mode);
    return true;
}

} // namespace

void FolderReader::Closer::operator()(void* folder) const {
    closedir(static_cast<DIR*>(folder));
}

FolderReader::FolderReader(const char* path) : folder(opendir(path)) {
    if (!folder)
        failure = LastError();
}

FolderReader::FolderReader(const FolderHandle& handle) : folder(OpenBeneath(handle)) {
    if (!folder)
        failure = LastError();
}

bStatus FolderReader::Next(FolderEntry* entry) {
    // System calls, because the standard library's iterator ends the program when it gets no memory.
    while (!failure) {
        errno = 0; // nothing else distinguishes the end from a failure
        const dirent* const found = readdir(static_cast<DIR*>(folder.get()));
        if (found == nullptr && errno == 0)
            return bERROR_END;
        if (found == nullptr) {
            failure = LastError();
            break;
        }
        entry->name = found->d_name;
        if (entry->name == "." || entry->name == "..")
            continue;
        if (AskKind(static_cast<DIR*>(folder.get()), *found, &entry->kind))
            return bOK;
        if (errno != ENOENT)
            failure = LastError();
    }
    return failure == std::errc::not_enough_memory ? bERROR_MEMORY : bERROR_FILE;
}
