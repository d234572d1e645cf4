#include "basalt/HiddenFile.h"

#include "basalt/RandomName.h"
#include "basalt/posix/FileState.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

HiddenFile::HiddenFile(const FolderHandle& folder, unsigned permissions) : folder(folder) {
    constexpr int kTries = 100;
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    failure = folder.IsOpen() ? std::make_error_code(std::errc::file_exists) : folder.Failure();
    for (int i = 0; i < kTries && failure == std::errc::file_exists; ++i) {
        hidden = RandomName(".corvane-");
        // The permissions are set at creation: reading the process's mask means changing it for a moment,
        // which other threads would notice.
        file = FileDescriptor(openat(folder.Number(), hidden.c_str(), kFlags, permissions));
        failure = IsOpen() ? std::error_code() : LastError();
    }
}

HiddenFile::~HiddenFile() {
    if (!IsOpen())
        return;
    static_cast<void>(file.Close());
    unlinkat(folder.Number(), hidden.c_str(), 0);
}

bool HiddenFile::Write(const void* data, std::size_t size) {
    const auto* rest = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(file.Number(), rest, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return Note(false);
        rest += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

std::int64_t HiddenFile::Append(const InputFile& source) {
    constexpr std::size_t kPiece = std::size_t{1} << 30;
    std::int64_t appended = 0;
    ssize_t got = 0;
    while ((got = copy_file_range(source.Number(), nullptr, file.Number(), nullptr, kPiece, 0)) > 0)
        appended += got;
    return appended;
}

bool HiddenFile::TakeOver(const FileOwnership& ownership) {
    return Note(ownership.GiveTo(file));
}

bool HiddenFile::Describe(const FileFacts& facts) {
    const std::error_code reason = ::Describe(file.Number(), facts);
    if (reason && !failure)
        failure = reason;
    return !reason;
}

bool HiddenFile::Sync() {
    return Note(fsync(file.Number()) == 0);
}

bool HiddenFile::Keep(const std::string& name) {
    const bool kept = Note(file.Close()) &&
                      Note(renameat(folder.Number(), hidden.c_str(), folder.Number(), name.c_str()) == 0);
    if (!kept)
        unlinkat(folder.Number(), hidden.c_str(), 0);
    return kept;
}

/// Keeps the first error.
bool HiddenFile::Note(bool succeeded) {
    if (!succeeded && !failure)
        failure = LastError();
    return succeeded;
}
