#include "basalt/FilePath.h"

std::error_code MakeFoldersAt(const std::string& path, unsigned permissions) {
    std::error_code failure = MakeFolderAt(path, permissions);
    const std::string above = FolderOf(path);
    if (failure == std::errc::no_such_file_or_directory && above != path) {
        failure = MakeFoldersAt(above, permissions);
        if (!failure || failure == std::errc::file_exists) // another process may have made it meanwhile
            failure = MakeFolderAt(path, permissions);
    }
    return failure;
}
