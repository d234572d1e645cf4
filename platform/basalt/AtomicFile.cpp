#include "basalt/AtomicFile.h"

#include <cerrno>
#include <filesystem>
#include <random>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t kBufferSize = std::size_t{64} * 1024;
constexpr mode_t kPermissionBits = 0777;
constexpr uid_t kSameId = static_cast<uid_t>(-1); ///< for fchown: leave the owner, or the group, as it is

/// The file that a name stands for: the far end of a chain of links, whether or not it exists yet.
std::string LinksFollowed(const std::string& path) {
    std::error_code failure;
    std::filesystem::path place(path);
    constexpr int kLongestChain = 40;
    for (int step = 0; step < kLongestChain && std::filesystem::is_symlink(place, failure); ++step) {
        // Joined to a folder, an absolute path stands for itself.
        place = place.parent_path() / std::filesystem::read_symlink(place, failure);
    }
    return place.string();
}

std::string FolderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

/// Creates a file of a new name in `folder` and says which in `path`. The permissions are given at creation,
/// because asking for the process's mask means changing it for a moment, under the feet of other threads.
int CreateBeside(const std::string& folder, mode_t permissions, std::string& path) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr int kTries = 100;
    std::random_device random;
    for (int i = 0; i < kTries; ++i) {
        path = folder + "/.corvane-";
        for (int letter = 0; letter < 6; ++letter)
            path += kLetters[random() % kLetters.size()];
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, permissions);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
    return -1;
}

/// Hands a new file to whom the old one belonged, as far as this user may give files away, and gives it the
/// old one's permissions. A group that could not be kept gets no more than everybody has: its rights were
/// another group's. @return false when the permissions could not be set
bool TakeOver(int file, const struct stat& old) {
    struct stat own {};
    if (fstat(file, &own) != 0)
        return false;
    mode_t permissions = old.st_mode & kPermissionBits;
    if (own.st_gid != old.st_gid && fchown(file, kSameId, old.st_gid) != 0)
        permissions &= ~mode_t{S_IRWXG} | (permissions & S_IRWXO) << 3;
    if (own.st_uid != old.st_uid)
        static_cast<void>(fchown(file, old.st_uid, static_cast<gid_t>(kSameId)) == 0);
    // A file system without permissions may refuse even those that the file has anyway.
    return (own.st_mode & kPermissionBits) == permissions || fchmod(file, permissions) == 0;
}

} // namespace

bool SyncFolderOf(const std::string& path) {
    const int folder = open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return errno == EACCES;
    const bool synced = fsync(folder) == 0 || errno == EINVAL || errno == ENOTSUP;
    return close(folder) == 0 && synced;
}

AtomicFile::AtomicFile(const std::string& path) : target(LinksFollowed(path)) {
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) // a ring of links, say, where a file would end the links
        return;
    if (exists && (!S_ISREG(old.st_mode) || faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0))
        return;
    buffer.reserve(kBufferSize); // before there is a file that a lack of memory would leave behind
    // A file that replaces another is private until it has the other's permissions.
    descriptor = CreateBeside(FolderOf(target), exists ? 0600 : 0666, beside);
    if (descriptor < 0)
        return;
    if (exists && !TakeOver(descriptor, old))
        failed = true;
}

AtomicFile::~AtomicFile() {
    Discard();
}

void AtomicFile::Write(const void* data, std::size_t size) {
    if (buffer.size() + size > kBufferSize && !FlushBuffer())
        return;
    if (size >= kBufferSize)
        WriteThrough(static_cast<const char*>(data), size);
    else
        buffer.append(static_cast<const char*>(data), size);
}

bool AtomicFile::Commit() {
    if (!IsOpen())
        return false;
    const bool written = FlushBuffer() && fsync(descriptor) == 0;
    const bool closed = close(descriptor) == 0;
    descriptor = -1;
    if (!written || !closed || rename(beside.c_str(), target.c_str()) != 0) {
        unlink(beside.c_str());
        return false;
    }
    return SyncFolderOf(target);
}

void AtomicFile::WriteThrough(const char* data, std::size_t size) {
    while (size > 0 && !failed) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            failed = true;
            return;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

bool AtomicFile::FlushBuffer() {
    if (!IsOpen())
        failed = true;
    WriteThrough(buffer.data(), failed ? 0 : buffer.size());
    buffer.clear();
    return !failed;
}

void AtomicFile::Discard() {
    if (!IsOpen())
        return;
    close(descriptor);
    descriptor = -1;
    unlink(beside.c_str());
}
