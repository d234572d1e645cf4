#include "basalt/windows/SystemFile.h"

#include "basalt/windows/FileName.h"
#include "basalt/windows/WideText.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <io.h>

// Declared in the headers for drivers only.
extern "C" NTSTATUS NTAPI NtQueryDirectoryFile(HANDLE folder, HANDLE event, PIO_APC_ROUTINE routine,
                                               PVOID context, PIO_STATUS_BLOCK status, PVOID data, ULONG size,
                                               FILE_INFORMATION_CLASS kind, BOOLEAN single,
                                               PUNICODE_STRING name, BOOLEAN restart);

namespace {

/// The compiler's headers have the flags and not their class.
constexpr auto kDispositionInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr ULONG kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr unsigned kWritable = 0644;
constexpr unsigned kReadOnly = 0444;
constexpr unsigned kFolder = 0755;

bool Succeeded(NTSTATUS status) {
    if (status >= 0)
        return true;
    SetLastError(RtlNtStatusToDosError(status));
    return false;
}

bool Refuse(DWORD reason) {
    SetLastError(reason);
    return false;
}

UNICODE_STRING TextOf(std::wstring& text) {
    const auto size = static_cast<USHORT>(text.size() * sizeof(wchar_t));
    return {size, size, text.data()};
}

bool IsShort(const std::wstring& name) {
    constexpr std::size_t kMaxName = 255;
    return name.size() <= kMaxName;
}

/// The name for the system's call: empty for the folder itself.
bool TakeName(const std::string& name, std::wstring* wide) {
    if (name == ".") {
        wide->clear();
        return true;
    }
    const std::optional<std::wstring> converted = WideOf(name);
    if (!converted || !IsOrdinaryName(*converted))
        return Refuse(ERROR_INVALID_PARAMETER);
    *wide = *converted;
    return IsShort(*wide) || Refuse(ERROR_FILENAME_EXCED_RANGE);
}

HANDLE Open(HANDLE folder, std::wstring name, const Opening& opening) {
    UNICODE_STRING text = TextOf(name);
    OBJECT_ATTRIBUTES place{};
    place.Length = sizeof place;
    place.RootDirectory = folder;
    place.ObjectName = &text;
    place.Attributes = OBJ_CASE_INSENSITIVE;
    IO_STATUS_BLOCK status{};
    HANDLE opened = INVALID_HANDLE_VALUE;
    const bool succeeded = Succeeded(
        NtCreateFile(&opened, opening.access | FILE_READ_ATTRIBUTES | SYNCHRONIZE, &place, &status, nullptr,
                     FILE_ATTRIBUTE_NORMAL, kShared, opening.disposition,
                     opening.options | FILE_OPEN_REPARSE_POINT | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0));
    return succeeded ? opened : INVALID_HANDLE_VALUE;
}

/// The entry of a folder's list that a name leads to: a name in other letters too, and the short form of a
/// name.
class ListedEntry final {
  public:
    bool Find(HANDLE folder, std::wstring name) {
        // A folder that is open keeps its first selection of names, so this is another opening of it.
        const FileDescriptor list(
            NumberOf(Open(folder, {}, {.access = FILE_LIST_DIRECTORY, .options = FILE_DIRECTORY_FILE})));
        if (!list.IsOpen())
            return false;
        UNICODE_STRING text = TextOf(name);
        IO_STATUS_BLOCK status{};
        const NTSTATUS result =
            NtQueryDirectoryFile(HandleOf(list.Number()), nullptr, nullptr, nullptr, &status, data,
                                 sizeof data, FileIdBothDirectoryInformation, TRUE, &text, TRUE);
        constexpr auto kNoSuchFile = static_cast<NTSTATUS>(0xC000000F);
        constexpr auto kNoMoreFiles = static_cast<NTSTATUS>(0x80000006);
        if (result == kNoSuchFile || result == kNoMoreFiles)
            return Refuse(ERROR_FILE_NOT_FOUND);
        return Succeeded(result);
    }
    [[nodiscard]] const FILE_ID_BOTH_DIR_INFO& Entry() const {
        return *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(data);
    }
    [[nodiscard]] std::wstring_view Name() const {
        return {Entry().FileName, Entry().FileNameLength / sizeof(wchar_t)};
    }

  private:
    static constexpr std::size_t kMaxNameBytes = std::size_t{256} * sizeof(wchar_t);
    alignas(8) std::byte data[sizeof(FILE_ID_BOTH_DIR_INFO) + kMaxNameBytes]{};
};

/// A link, and what else makes the system go on at another place.
bool LeadsElsewhere(DWORD attributes, DWORD tag) {
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(tag);
}

constexpr std::int64_t kTicks = 10'000'000; // of 100 ns, in a second
constexpr std::int64_t kFrom1601To1970 = 11'644'473'600;
constexpr std::int64_t kNanosecondsOfATick = 100;

FileFacts Facts(DWORD attributes, DWORD tag, std::uint64_t size, std::int64_t modified) {
    FileFacts facts;
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.kind = LeadsElsewhere(attributes, tag)             ? FileKind::Link
                 : (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? FileKind::Other
                 : isFolder                                  ? FileKind::Folder
                                                             : FileKind::File;
    facts.size = isFolder ? 0 : static_cast<std::int64_t>(size);
    facts.modified = modified / kTicks - kFrom1601To1970;
    facts.modifiedFraction = modified % kTicks * kNanosecondsOfATick;
    const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    facts.permissions = isFolder ? kFolder : readOnly ? kReadOnly : kWritable;
    return facts;
}

} // namespace

HANDLE HandleOf(int number) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(number));
}

int NumberOf(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE)
        return -1;
    const int number = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY | _O_NOINHERIT);
    if (number < 0) {
        CloseHandle(handle);
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
    }
    return number;
}

HANDLE OpenIn(HANDLE folder, const std::string& name, const Opening& opening) {
    std::wstring wide;
    if (!TakeName(name, &wide))
        return INVALID_HANDLE_VALUE;
    FileFacts ignored;
    if (opening.disposition == FILE_OPEN && !wide.empty() && !AskIn(folder, name, &ignored)) {
        if (GetLastError() == ERROR_FILE_EXISTS)
            SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return Open(folder, wide, opening);
}

HANDLE OpenAt(const std::string& path, DWORD access, DWORD flags) {
    const std::optional<std::wstring> wide = LongPathOf(path);
    if (!wide) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(wide->c_str(), access, kShared, nullptr, OPEN_EXISTING,
                       flags | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

bool AskIn(HANDLE folder, const std::string& name, FileFacts* facts) {
    std::wstring wide;
    if (!TakeName(name, &wide))
        return false;
    if (wide.empty())
        return AskHandle(folder, facts);
    ListedEntry found;
    if (!found.Find(folder, wide))
        return false;
    if (found.Name() != wide)
        return Refuse(ERROR_FILE_EXISTS);
    *facts = FactsOf(found.Entry());
    return true;
}

bool AskHandle(HANDLE handle, FileFacts* facts) {
    if (const DWORD type = GetFileType(handle); type != FILE_TYPE_DISK) {
        if (type == FILE_TYPE_UNKNOWN)
            return false;
        *facts = {.kind = FileKind::Other};
        return true;
    }
    BY_HANDLE_FILE_INFORMATION state{};
    FILE_ATTRIBUTE_TAG_INFO tag{};
    if (GetFileInformationByHandle(handle, &state) == FALSE)
        return false;
    if ((state.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
        GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag) == FALSE)
        return false;
    const ULARGE_INTEGER size{{state.nFileSizeLow, state.nFileSizeHigh}};
    const ULARGE_INTEGER modified{
        {state.ftLastWriteTime.dwLowDateTime, state.ftLastWriteTime.dwHighDateTime}};
    *facts = Facts(state.dwFileAttributes, tag.ReparseTag, size.QuadPart,
                   static_cast<std::int64_t>(modified.QuadPart));
    facts->id = ULARGE_INTEGER{{state.nFileIndexLow, state.nFileIndexHigh}}.QuadPart;
    return true;
}

FileFacts FactsOf(const FILE_ID_BOTH_DIR_INFO& entry) {
    // What leads elsewhere has its tag in the place of another size.
    FileFacts facts =
        Facts(entry.FileAttributes, entry.EaSize, static_cast<std::uint64_t>(entry.EndOfFile.QuadPart),
              entry.LastWriteTime.QuadPart);
    facts.id = static_cast<std::uint64_t>(entry.FileId.QuadPart);
    return facts;
}

bool Describe(HANDLE handle, const FileFacts& facts) {
    constexpr unsigned kOwnerWrites = 0200;
    FILE_BASIC_INFO basic{}; // a time of 0 stays as it is
    basic.LastWriteTime.QuadPart =
        (facts.modified + kFrom1601To1970) * kTicks + facts.modifiedFraction / kNanosecondsOfATick;
    const bool readOnly = facts.kind == FileKind::File && (facts.permissions & kOwnerWrites) == 0;
    basic.FileAttributes = readOnly                       ? FILE_ATTRIBUTE_READONLY
                           : facts.kind == FileKind::File ? FILE_ATTRIBUTE_NORMAL
                                                          : FILE_ATTRIBUTE_DIRECTORY;
    return SetFileInformationByHandle(handle, FileBasicInfo, &basic, sizeof basic) != FALSE;
}

bool Rename(HANDLE file, HANDLE folder, const std::string& name, bool replace) {
    std::wstring wide;
    if (!TakeName(name, &wide))
        return false;
    std::vector<std::byte> data(sizeof(FILE_RENAME_INFORMATION) + wide.size() * sizeof(wchar_t));
    auto* const order = reinterpret_cast<FILE_RENAME_INFORMATION*>(data.data());
    order->ReplaceIfExists = replace ? TRUE : FALSE;
    order->RootDirectory = folder;
    order->FileNameLength = static_cast<ULONG>(wide.size() * sizeof(wchar_t));
    std::memcpy(order->FileName, wide.data(), order->FileNameLength);
    IO_STATUS_BLOCK status{};
    return Succeeded(
        NtSetInformationFile(file, &status, order, static_cast<ULONG>(data.size()), FileRenameInformation));
}

bool Remove(HANDLE handle) {
    // The name is free at once, whoever else still has the file open, where the system and its disk can do
    // that.
    FILE_DISPOSITION_INFO_EX atOnce{FILE_DISPOSITION_FLAG_DELETE | FILE_DISPOSITION_FLAG_POSIX_SEMANTICS |
                                    FILE_DISPOSITION_FLAG_IGNORE_READONLY_ATTRIBUTE};
    if (SetFileInformationByHandle(handle, kDispositionInfoEx, &atOnce, sizeof atOnce) != FALSE)
        return true;
    FILE_BASIC_INFO basic{};
    if (GetFileInformationByHandleEx(handle, FileBasicInfo, &basic, sizeof basic) != FALSE &&
        (basic.FileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        basic = {};
        basic.FileAttributes = FILE_ATTRIBUTE_NORMAL;
        SetFileInformationByHandle(handle, FileBasicInfo, &basic, sizeof basic);
    }
    FILE_DISPOSITION_INFO disposition{TRUE};
    return SetFileInformationByHandle(handle, FileDispositionInfo, &disposition, sizeof disposition) != FALSE;
}
