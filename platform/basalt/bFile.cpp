#include "bFile.h"

#include <filesystem>

int bFile_Exists(const char* path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) ? 1 : 0;
}

bStatus bFile_Delete(const char* path) {
    if (bFile_Exists(path) == 0)
        return bERROR_NOT_FOUND;
    std::error_code failure;
    return std::filesystem::remove(path, failure) ? bOK : bERROR_FILE;
}
