#include "basalt/bDirectory.h"

#include "basalt/FolderReader.h"

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

bStatus List(const char* path, FileKind kind, bArrayList* list) {
    list->Clear();
    FolderReader reader(path);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        if (entry.kind == kind && (status = list->Add(entry.name)) != bOK)
            return status;
    if (status != bERROR_END)
        return status;
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
    return List(path, FileKind::File, list);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list) {
    return List(path, FileKind::Folder, list);
}
