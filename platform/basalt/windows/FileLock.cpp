#include "basalt/FileLock.h"

#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"

FileLock::FileLock(const FolderHandle& folder, const std::string& name) {
    constexpr int kTries = 100;
    // A file that lost its name between opening and locking would be locked in vain: the next one to come
    // makes another.
    for (int i = 0; i < kTries; ++i) {
        Open(folder, name);
        Lock();
        if (state != State::Taken || HasName())
            return;
        state = State::Failed;
    }
}

void FileLock::Open(const FolderHandle& folder, const std::string& name) {
    file = FileDescriptor(NumberOf(OpenIn(HandleOf(folder.Number()), name,
                                          {.access = FILE_READ_DATA | FILE_WRITE_DATA,
                                           .disposition = FILE_OPEN_IF,
                                           .options = FILE_NON_DIRECTORY_FILE})));
    FileFacts facts;
    if (!file.IsOpen()) {
        failure = LastError();
    } else if (!AskHandle(HandleOf(file.Number()), &facts) || facts.kind != FileKind::File) {
        failure = std::make_error_code(std::errc::operation_not_permitted);
        file = FileDescriptor();
    }
}

void FileLock::Lock() {
    if (!file.IsOpen())
        return;
    OVERLAPPED fromTheStart{};
    if (LockFileEx(HandleOf(file.Number()), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                   &fromTheStart) != FALSE)
        state = State::Taken;
    else if (GetLastError() == ERROR_LOCK_VIOLATION || GetLastError() == ERROR_IO_PENDING)
        state = State::HeldByAnother;
    else
        failure = LastError();
}

bool FileLock::HasName() {
    FILE_STANDARD_INFO found{};
    if (GetFileInformationByHandleEx(HandleOf(file.Number()), FileStandardInfo, &found, sizeof found) !=
            FALSE &&
        found.NumberOfLinks > 0 && found.DeletePending == FALSE)
        return true;
    failure = std::make_error_code(std::errc::no_such_file_or_directory);
    return false;
}
