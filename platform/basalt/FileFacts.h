#pragma once

#include <cstdint>

/// What a name in a folder refers to.
enum class FileKind {
    File,
    Folder,
    Link,  ///< a symbolic link, whatever it refers to
    Other, ///< a pipe, a socket, a device
};

/// The only permission bits that are read from files and archives and given to new ones.
constexpr unsigned kPermissionBits = 0777;

/// The permissions of something unpacked: its own, and what its owner needs to work with it. A file can
/// always be read, so that it can be packed again; a folder can always be changed, so that a file in it can
/// be replaced and the folder removed.
constexpr unsigned UsablePermissions(FileKind kind, unsigned permissions) {
    return (permissions & kPermissionBits) | (kind == FileKind::Folder ? 0700U : 0400U);
}

/// What the system knows about a file or a folder.
struct FileFacts {
    FileKind kind = FileKind::File;
    std::int64_t size = 0;             ///< bytes
    std::int64_t modified = 0;         ///< seconds since 1970
    std::int64_t modifiedFraction = 0; ///< and nanoseconds
    unsigned permissions = 0;          ///< within kPermissionBits
    std::uint64_t id = 0;              ///< unique in its file system
    bool operator==(const FileFacts&) const = default;
};
