#include "windows.h"

#include <cerrno>
#include <string>

errno_t fopen_s(std::FILE** file, const char* name, const char* mode) {
    if (file == nullptr)
        return EINVAL;
    *file = nullptr;
    if (name == nullptr || mode == nullptr)
        return EINVAL;
    *file = std::fopen(name, (std::string(mode) + 'e').c_str());
    return *file == nullptr ? errno : 0;
}
