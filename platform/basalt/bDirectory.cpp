#include "bDirectory.h"

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

bStatus List(const char* path, fs::file_type kind, bArrayList* list) try {
    list->Clear();
    std::error_code failure;
    fs::directory_iterator entry(path, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        std::error_code vanished;
        if (entry->symlink_status(vanished).type() != kind)
            continue;
        if (const bStatus status = list->Add(entry->path().filename().native()); status != bOK)
            return status;
    }
    if (failure)
        return bERROR_FILE;
    list->Sort();
    return bOK;
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
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
    return List(path, fs::file_type::regular, list);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list) {
    return List(path, fs::file_type::directory, list);
}
