#pragma once

#include <cstdint>

/// What a name in a folder leads to.
enum class FileKind {
    File,
    Folder,
    Link,  ///< a symbolic link, whatever it leads to
    Other, ///< a pipe, a socket, a device
};

/// The permission bits that are read from files and archives and given to new ones; never more.
constexpr unsigned kPermissionBits = 0777;

/// The permissions that something unpacked gets: its own, and what its owner needs to go on with it. A file
/// can always be read, so that it can be packed again; a folder can always be changed, so that a file in it
/// can be replaced and the folder removed.
constexpr unsigned UsablePermissions(FileKind kind, unsigned permissions) {
    return (permissions & kPermissionBits) | (kind == FileKind::Folder ? 0700U : 0400U);
}

/// What the system knows of a file or a folder.
struct FileFacts {
    FileKind kind = FileKind::File;
    std::int64_t size = 0;             ///< bytes
    std::int64_t modified = 0;         ///< seconds since 1970
    std::int64_t modifiedFraction = 0; ///< and nanoseconds
    unsigned permissions = 0;          ///< within kPermissionBits
    std::uint64_t id = 0;              ///< tells it from all others of its file system
    bool operator==(const FileFacts&) const = default;
};
