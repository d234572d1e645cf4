#include "basalt/FileOwnership.h"

#include "basalt/FileFacts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr auto kSameId = static_cast<unsigned>(-1); ///< leaves the owner, or the group, as it is

/// The permissions for a file whose group could not be set.
unsigned WithoutGroup(unsigned permissions) {
    return permissions & (~unsigned{S_IRWXG} | (permissions & S_IRWXO) << 3);
}

} // namespace

std::optional<FileOwnership> FileOwnership::Of(const std::string& path) {
    struct stat state {};
    if (stat(path.c_str(), &state) != 0)
        return std::nullopt;
    FileOwnership found;
    found.owner = state.st_uid;
    found.group = state.st_gid;
    found.permissions = state.st_mode & kPermissionBits;
    return found;
}

bool FileOwnership::GiveTo(const FileDescriptor& file) const {
    struct stat own {};
    return fstat(file.Number(), &own) == 0 &&
           Give(
               own, [&](auto... ids) { return fchown(file.Number(), ids...) == 0; },
               [&](unsigned mode) { return fchmod(file.Number(), mode) == 0; });
}

bool FileOwnership::GiveTo(const std::string& path) const {
    struct stat own {};
    return lstat(path.c_str(), &own) == 0 && !S_ISLNK(own.st_mode) &&
           Give(
               own, [&](auto... ids) { return lchown(path.c_str(), ids...) == 0; },
               [&](unsigned mode) { return chmod(path.c_str(), mode) == 0; });
}

/// @param own the state of the new file
/// @param changeOwner,changeMode the system's calls on it, which return whether they succeeded
template<class State, class ChangeOwner, class ChangeMode>
bool FileOwnership::Give(const State& own, ChangeOwner changeOwner, ChangeMode changeMode) const {
    unsigned given = permissions;
    if (own.st_gid != group && !changeOwner(kSameId, group))
        given = WithoutGroup(given);
    if (own.st_uid != owner)
        static_cast<void>(changeOwner(owner, kSameId));
    // A file system without permissions may refuse even those that the file already has.
    return (own.st_mode & kPermissionBits) == given || changeMode(given);
}

bool MayWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}
