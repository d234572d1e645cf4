#include "basalt/bDirectory.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, FolderCloser>;

bStatus StatusOfErrno() {
    return errno == ENOMEM ? bERROR_MEMORY : bERROR_FILE;
}

/// The kind of an entry, without following links; 0 for one that has vanished meanwhile.
bStatus AskKind(const Folder& folder, const dirent& entry, mode_t* kind) {
    *kind = static_cast<mode_t>(DTTOIF(entry.d_type));
    if (entry.d_type != DT_UNKNOWN)
        return bOK;
    struct stat state {};
    if (fstatat(dirfd(folder.get()), entry.d_name, &state, AT_SYMLINK_NOFOLLOW) == 0)
        *kind = state.st_mode & S_IFMT;
    else if (errno != ENOENT)
        return StatusOfErrno();
    return bOK;
}

bStatus AddIfOfKind(const Folder& folder, const dirent& entry, mode_t kind, bArrayList* list) {
    const std::string_view name = entry.d_name;
    mode_t found = 0;
    if (const bStatus status = AskKind(folder, entry, &found); status != bOK)
        return status;
    return found != kind || name == "." || name == ".." ? bOK : list->Add(name);
}

/// With the system's own calls: the standard library's iterator ends the program when it gets no memory.
bStatus List(const char* path, mode_t kind, bArrayList* list) {
    list->Clear();
    const Folder folder(opendir(path));
    if (!folder)
        return StatusOfErrno();
    errno = 0; // nothing else tells the end from a failure
    while (const dirent* const entry = readdir(folder.get())) {
        if (const bStatus status = AddIfOfKind(folder, *entry, kind, list); status != bOK)
            return status;
        errno = 0;
    }
    if (errno != 0)
        return StatusOfErrno();
    list->Sort();
    return bOK;
}

/// "link/" would name what the link leads to; "link" names the link.
std::string WithoutSlashAtTheEnd(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

} // namespace

int bDirectory_Exists(const char* path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored) ? 1 : 0;
}

bStatus bDirectory_Create(const char* path) {
    std::error_code failure;
    return fs::create_directory(path, failure) && !failure ? bOK : bERROR_FILE;
}

bStatus bDirectory_Delete(const char* path) {
    std::error_code failure;
    const std::string place = WithoutSlashAtTheEnd(path);
    if (fs::symlink_status(place, failure).type() == fs::file_type::not_found)
        return bERROR_NOT_FOUND;
    if (!fs::is_directory(place, failure))
        return bERROR_FILE;
    fs::remove_all(place, failure);
    return failure ? bERROR_FILE : bOK;
}

bStatus bDirectory_ListFiles(const char* path, bArrayList* list) {
    return List(path, S_IFREG, list);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list) {
    return List(path, S_IFDIR, list);
}
