#include "basalt/FileLock.h"

#include "basalt/posix/FileState.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

FileLock::FileLock(const FolderHandle& folder, const std::string& name) {
    constexpr int kTries = 100;
    // A file that lost its name between opening and locking would be locked in vain: the next process creates
    // another.
    for (int i = 0; i < kTries; ++i) {
        Open(folder, name);
        Lock();
        if (state != State::Taken || HasName())
            return;
        state = State::Failed;
    }
}

void FileLock::Open(const FolderHandle& folder, const std::string& name) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    file = FileDescriptor(openat(folder.Number(), name.c_str(), kFlags, S_IRUSR | S_IWUSR));
    struct stat found {};
    if (!file.IsOpen() || fstat(file.Number(), &found) != 0) {
        failure = LastError();
        file = FileDescriptor();
    } else if (!S_ISREG(found.st_mode) || found.st_uid != geteuid()) {
        failure = std::make_error_code(std::errc::operation_not_permitted);
        file = FileDescriptor();
    } else {
        // The sticky bit keeps cleaners of old files from removing it.
        static_cast<void>(fchmod(file.Number(), S_ISVTX | S_IRUSR | S_IWUSR) == 0);
    }
}

void FileLock::Lock() {
    if (!file.IsOpen())
        return;
    int result = -1;
    do {
        result = flock(file.Number(), LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        state = State::Taken;
    else if (errno == EWOULDBLOCK)
        state = State::HeldByAnother;
    else
        failure = LastError();
}

bool FileLock::HasName() {
    struct stat found {};
    if (fstat(file.Number(), &found) == 0 && found.st_nlink > 0)
        return true;
    failure = std::make_error_code(std::errc::no_such_file_or_directory);
    return false;
}
