#pragma once

#include <string_view>

/// Whether a bare name is what a file or a folder has on every version of the system: not one that the system
/// treats as a device (CON, NUL.txt), as a stream of a file (name:stream) or as another name (a point or a
/// blank at the end), and without separators, wildcards and control characters.
[[nodiscard]] bool IsOrdinaryName(std::wstring_view name);
