#include "basalt/bDirectory.h"

#include "basalt/FolderReader.h"

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

void Tell(std::error_code* why, const std::error_code& reason) {
    if (why != nullptr)
        *why = reason;
}

bStatus List(const char* path, FileKind kind, bArrayList* list, std::error_code* why) {
    list->Clear();
    FolderReader reader(path);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        if (entry.kind == kind && (status = list->Add(entry.name)) != bOK)
            return status;
    Tell(why, reader.Failure());
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

bStatus bDirectory_Create(const char* path, std::error_code* why) {
    std::error_code failure;
    if (!fs::create_directory(path, failure) && !failure)
        failure = make_error_code(std::errc::file_exists);
    Tell(why, failure);
    return failure ? bERROR_FILE : bOK;
}

bStatus bDirectory_Delete(const char* path, std::error_code* why) {
    std::error_code failure;
    const std::string place = WithoutSlashAtTheEnd(path);
    if (fs::symlink_status(place, failure).type() == fs::file_type::not_found)
        return bERROR_NOT_FOUND;
    if (fs::is_directory(place, failure))
        fs::remove_all(place, failure);
    else if (!failure)
        failure = make_error_code(std::errc::not_a_directory);
    Tell(why, failure);
    return failure ? bERROR_FILE : bOK;
}

bStatus bDirectory_ListFiles(const char* path, bArrayList* list, std::error_code* why) {
    return List(path, FileKind::File, list, why);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list, std::error_code* why) {
    return List(path, FileKind::Folder, list, why);
}
