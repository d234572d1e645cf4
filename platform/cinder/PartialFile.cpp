#include "cinder/PartialFile.h"

#include <cerrno>
#include <cstdio>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A name that an archive cannot foresee.
std::string HiddenName() {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr int kCount = 6;
    std::random_device random;
    std::string name = ".corvane-";
    for (int i = 0; i < kCount; ++i)
        name += kLetters[random() % kLetters.size()];
    return name;
}

} // namespace

PartialFile::PartialFile(int folder, std::string name, unsigned permissions)
    : folder(folder), name(std::move(name)) {
    constexpr int kTries = 100;
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    if (!NameIsFree())
        return;
    for (int i = 0; i < kTries; ++i) {
        hidden = HiddenName();
        descriptor = openat(folder, hidden.c_str(), kFlags, permissions | 0600U);
        if (IsOpen() || errno != EEXIST)
            return;
    }
}

PartialFile::~PartialFile() {
    if (IsOpen()) {
        close(descriptor);
        unlinkat(folder, hidden.c_str(), 0);
    }
    if (folder >= 0)
        close(folder);
}

bool PartialFile::Write(std::string_view data) const {
    while (!data.empty()) {
        const ssize_t written = write(descriptor, data.data(), data.size());
        if (written <= 0 && errno != EINTR)
            return false;
        if (written > 0)
            data.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool PartialFile::Keep() {
    const bool closed = close(std::exchange(descriptor, -1)) == 0;
    const bool kept = closed && renameat(folder, hidden.c_str(), folder, name.c_str()) == 0;
    if (!kept)
        unlinkat(folder, hidden.c_str(), 0);
    return kept;
}

bool PartialFile::NameIsFree() const {
    struct stat state {};
    if (fstatat(folder, name.c_str(), &state, AT_SYMLINK_NOFOLLOW) == 0)
        return S_ISREG(state.st_mode);
    return errno == ENOENT;
}
