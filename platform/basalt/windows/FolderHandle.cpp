#include "basalt/FolderHandle.h"

#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"

namespace {

constexpr ACCESS_MASK kFolderAccess = FILE_LIST_DIRECTORY | FILE_TRAVERSE;

/// What was opened, when it is a folder and no link to one.
HANDLE OnlyFolder(HANDLE opened) {
    FileFacts facts;
    if (opened == INVALID_HANDLE_VALUE || (AskHandle(opened, &facts) && facts.kind == FileKind::Folder))
        return opened;
    CloseHandle(opened);
    SetLastError(ERROR_DIRECTORY);
    return INVALID_HANDLE_VALUE;
}

std::error_code Result(bool succeeded) {
    return succeeded ? std::error_code() : LastError();
}

} // namespace

FolderHandle::FolderHandle(int opened)
    : descriptor(opened), failure(opened < 0 ? LastError() : std::error_code()) {
}

FolderHandle::FolderHandle(const std::string& path, Links links)
    : FolderHandle(NumberOf(OnlyFolder(
          OpenAt(path, kFolderAccess, links == Links::Refused ? FILE_FLAG_OPEN_REPARSE_POINT : 0)))) {
}

FolderHandle FolderHandle::OpenFolder(const std::string& name) const {
    return FolderHandle(NumberOf(OnlyFolder(
        OpenIn(HandleOf(Number()), name, {.access = kFolderAccess, .options = FILE_DIRECTORY_FILE}))));
}

/// Permissions are what the folder above hands down.
std::error_code FolderHandle::MakeFolder(const std::string& name, unsigned /*permissions*/) const {
    const FileDescriptor made(NumberOf(
        OpenIn(HandleOf(Number()), name, {.disposition = FILE_CREATE, .options = FILE_DIRECTORY_FILE})));
    return Result(made.IsOpen());
}

std::error_code FolderHandle::Ask(const std::string& name, FileFacts* facts) const {
    return Result(AskIn(HandleOf(Number()), name, facts));
}

std::error_code FolderHandle::RemoveFile(const std::string& name) const {
    const FileDescriptor file(NumberOf(OpenIn(HandleOf(Number()), name, {.access = kRemoving})));
    if (!file.IsOpen())
        return LastError();
    FileFacts facts;
    if (AskHandle(HandleOf(file.Number()), &facts) && facts.kind == FileKind::Folder)
        return std::make_error_code(std::errc::is_a_directory);
    return Result(Remove(HandleOf(file.Number())));
}

std::error_code FolderHandle::RenameToFree(const std::string& name, const std::string& free) const {
    const FileDescriptor file(NumberOf(OpenIn(HandleOf(Number()), name, {.access = DELETE})));
    return Result(file.IsOpen() && Rename(HandleOf(file.Number()), HandleOf(Number()), free, false));
}

FileDescriptor FolderHandle::OpenItself() const {
    return FileDescriptor(
        NumberOf(OpenIn(HandleOf(Number()), ".",
                        {.access = FILE_ADD_FILE | FILE_WRITE_ATTRIBUTES, .options = FILE_DIRECTORY_FILE})));
}

std::error_code FolderHandle::Describe(const FileFacts& facts) const {
    const FileDescriptor folder = OpenItself();
    return Result(folder.IsOpen() && ::Describe(HandleOf(folder.Number()), facts));
}

std::error_code FolderHandle::Sync() const {
    const FileDescriptor folder = OpenItself();
    if (folder.IsOpen() && FlushFileBuffers(HandleOf(folder.Number())) != FALSE)
        return {};
    const DWORD reason = GetLastError();
    const bool notForUs = reason == ERROR_ACCESS_DENIED || reason == ERROR_INVALID_FUNCTION ||
                          reason == ERROR_INVALID_HANDLE || reason == ERROR_NOT_SUPPORTED;
    return notForUs ? std::error_code() : LastError();
}
