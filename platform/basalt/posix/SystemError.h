#pragma once

#include <cerrno>
#include <system_error>

/// The reason of the call that just failed.
inline std::error_code LastError() {
    return {errno, std::generic_category()};
}
