#include "basalt/HiddenFile.h"

#include "basalt/RandomName.h"
#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"

#include <algorithm>

namespace {

constexpr Opening kNewFile = {.access =
                                  FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC | READ_CONTROL | kRemoving,
                              .disposition = FILE_CREATE,
                              .options = FILE_NON_DIRECTORY_FILE};

/// Only the read-only mark of a file that is replaced is in the way of that: it has nothing to do with the
/// folder.
bool TakeReadOnlyMarkOff(HANDLE folder, const std::string& name) {
    const FileDescriptor file(NumberOf(OpenIn(folder, name, {.access = FILE_WRITE_ATTRIBUTES})));
    FileFacts facts;
    if (!file.IsOpen() || !AskHandle(HandleOf(file.Number()), &facts) || facts.kind != FileKind::File)
        return false;
    FILE_BASIC_INFO basic{};
    basic.FileAttributes = FILE_ATTRIBUTE_NORMAL;
    constexpr unsigned kWriting = 0222;
    return (facts.permissions & kWriting) == 0 &&
           SetFileInformationByHandle(HandleOf(file.Number()), FileBasicInfo, &basic, sizeof basic) != FALSE;
}

bool Replace(HANDLE file, HANDLE folder, const std::string& name) {
    return Rename(file, folder, name, true) ||
           (GetLastError() == ERROR_ACCESS_DENIED && TakeReadOnlyMarkOff(folder, name) &&
            Rename(file, folder, name, true));
}

} // namespace

/// A new file gets the rights that its folder hands down.
HiddenFile::HiddenFile(const FolderHandle& folder, unsigned /*permissions*/) : folder(folder) {
    constexpr int kTries = 100;
    failure = folder.IsOpen() ? std::make_error_code(std::errc::file_exists) : folder.Failure();
    for (int i = 0; i < kTries && failure == std::errc::file_exists; ++i) {
        hidden = RandomName(".corvane-");
        file = FileDescriptor(NumberOf(OpenIn(HandleOf(folder.Number()), hidden, kNewFile)));
        failure = IsOpen() ? std::error_code() : LastError();
    }
}

HiddenFile::~HiddenFile() {
    if (IsOpen())
        static_cast<void>(Remove(HandleOf(file.Number())));
}

bool HiddenFile::Write(const void* data, std::size_t size) {
    constexpr std::size_t kMaxAtOnce = std::size_t{1} << 30U;
    const auto* rest = static_cast<const char*>(data);
    while (size > 0) {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min(size, kMaxAtOnce));
        if (WriteFile(HandleOf(file.Number()), rest, count, &written, nullptr) == FALSE || written == 0)
            return Note(false);
        rest += written;
        size -= written;
    }
    return true;
}

/// The system copies whole files only, so all of it is read and written.
std::int64_t HiddenFile::Append(const InputFile& /*source*/) {
    return 0;
}

bool HiddenFile::TakeOver(const FileOwnership& ownership) {
    return Note(ownership.GiveTo(file));
}

bool HiddenFile::Describe(const FileFacts& facts) {
    return Note(::Describe(HandleOf(file.Number()), facts));
}

bool HiddenFile::Sync() {
    return Note(FlushFileBuffers(HandleOf(file.Number())) != FALSE);
}

bool HiddenFile::Keep(const std::string& name) {
    // It is renamed while it is open: nobody can put another file in its place in between.
    const bool kept = Note(Replace(HandleOf(file.Number()), HandleOf(folder.Number()), name));
    if (!kept)
        static_cast<void>(Remove(HandleOf(file.Number())));
    return Note(file.Close()) && kept;
}

/// Keeps the first reason.
bool HiddenFile::Note(bool succeeded) {
    if (!succeeded && !failure)
        failure = LastError();
    return succeeded;
}
