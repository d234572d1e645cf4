#pragma once

#include <system_error>

#include <windows.h>

/// The reason of the call that just failed.
inline std::error_code LastError() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}
