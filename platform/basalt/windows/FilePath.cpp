#include "basalt/FilePath.h"

#include "basalt/FolderReader.h"
#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"
#include "basalt/windows/WideText.h"

#include <vector>

namespace {

constexpr std::string_view kSeparators = "/\\";

std::error_code Result(bool succeeded) {
    return succeeded ? std::error_code() : LastError();
}

std::error_code Ask(const std::string& path, DWORD flags, FileFacts* facts) {
    const FileDescriptor opened(NumberOf(OpenAt(path, FILE_READ_ATTRIBUTES, flags)));
    return Result(opened.IsOpen() && AskHandle(HandleOf(opened.Number()), facts));
}

/// How many characters of a path come before its last name.
std::size_t StartOfName(const std::string& path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    if (separator != std::string::npos)
        return separator + 1;
    constexpr std::size_t kDrive = 2; // "C:name" is in the current folder of that drive
    return path.size() >= kDrive && path[1] == ':' ? kDrive : 0;
}

/// Removes everything in a folder; a link is removed itself.
std::error_code Empty(const FolderHandle& folder) {
    std::vector<std::string> names;
    FolderReader reader(folder);
    bStatus status = bOK;
    for (FolderEntry entry; (status = reader.Next(&entry)) == bOK;)
        names.emplace_back(entry.name);
    if (status != bERROR_END)
        return reader.Failure();
    for (const std::string& name : names) {
        FileFacts facts;
        std::error_code failure = folder.Ask(name, &facts);
        if (!failure && facts.kind == FileKind::Folder)
            failure = Empty(folder.OpenFolder(name));
        if (failure)
            return failure;
        const FileDescriptor entry(NumberOf(OpenIn(HandleOf(folder.Number()), name, {.access = kRemoving})));
        if (!entry.IsOpen() || !Remove(HandleOf(entry.Number())))
            return LastError();
    }
    return {};
}

} // namespace

std::error_code AskPath(const std::string& path, FileFacts* facts) {
    return Ask(path, 0, facts);
}

std::error_code AskPathItself(const std::string& path, FileFacts* facts) {
    return Ask(path, FILE_FLAG_OPEN_REPARSE_POINT, facts);
}

bool LeadToTheSame(const std::string& one, const std::string& other) {
    const FileDescriptor first(NumberOf(OpenAt(one, FILE_READ_ATTRIBUTES, 0)));
    const FileDescriptor second(NumberOf(OpenAt(other, FILE_READ_ATTRIBUTES, 0)));
    BY_HANDLE_FILE_INFORMATION left{};
    BY_HANDLE_FILE_INFORMATION right{};
    return first.IsOpen() && second.IsOpen() &&
           GetFileInformationByHandle(HandleOf(first.Number()), &left) != FALSE &&
           GetFileInformationByHandle(HandleOf(second.Number()), &right) != FALSE &&
           left.dwVolumeSerialNumber == right.dwVolumeSerialNumber &&
           left.nFileIndexHigh == right.nFileIndexHigh && left.nFileIndexLow == right.nFileIndexLow;
}

std::string FolderOf(const std::string& path) {
    const std::size_t start = StartOfName(path);
    std::string folder = path.substr(0, start);
    if (folder.empty())
        return ".";
    // A root keeps its separator: "C:" alone is the current folder of that drive.
    while (folder.size() > 1 && kSeparators.find(folder.back()) != std::string_view::npos &&
           folder[folder.size() - 2] != ':')
        folder.pop_back();
    return folder;
}

std::string NameOf(const std::string& path) {
    return path.substr(StartOfName(path));
}

std::string AbsolutePath(const std::string& path) {
    const std::optional<std::wstring> full = LongPathOf(path);
    return full ? PathFromSystem(*full) : path;
}

std::string RealPath(const std::string& path) {
    const FileDescriptor opened(NumberOf(OpenAt(path, FILE_READ_ATTRIBUTES, 0)));
    if (!opened.IsOpen())
        return {};
    std::wstring real(MAX_PATH, L'\0');
    DWORD size =
        GetFinalPathNameByHandleW(HandleOf(opened.Number()), real.data(), static_cast<DWORD>(real.size()), 0);
    if (size > real.size()) {
        real.resize(size);
        size = GetFinalPathNameByHandleW(HandleOf(opened.Number()), real.data(), size, 0);
    }
    real.resize(size);
    return PathFromSystem(real);
}

std::string LinksFollowed(const std::string& path) {
    FileFacts facts;
    if (AskPathItself(path, &facts) || facts.kind != FileKind::Link)
        return path;
    const std::string real = RealPath(path);
    return real.empty() ? path : real;
}

std::error_code MovePath(const std::string& target, const std::string& from) {
    const std::optional<std::wstring> source = LongPathOf(from);
    const std::optional<std::wstring> place = LongPathOf(target);
    if (!source || !place)
        return std::make_error_code(std::errc::invalid_argument);
    return Result(MoveFileExW(source->c_str(), place->c_str(),
                              MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE);
}

std::error_code ExchangePaths(const std::string& /*one*/, const std::string& /*other*/) {
    return std::make_error_code(std::errc::not_supported);
}

std::error_code MakeFolderAt(const std::string& path, unsigned permissions) {
    const std::string name = NameOf(path);
    const FolderHandle above(FolderOf(path), FolderHandle::Links::Followed);
    if (!above.IsOpen())
        return above.Failure();
    return above.MakeFolder(name, permissions);
}

std::error_code RemoveFileAt(const std::string& path) {
    const FileDescriptor file(NumberOf(OpenAt(path, kRemoving, FILE_FLAG_OPEN_REPARSE_POINT)));
    return Result(file.IsOpen() && Remove(HandleOf(file.Number())));
}

std::error_code RemoveTreeAt(const std::string& path) {
    FileFacts facts;
    std::error_code failure = AskPathItself(path, &facts);
    if (!failure && facts.kind == FileKind::Folder)
        failure = Empty(FolderHandle(path, FolderHandle::Links::Refused));
    return failure ? failure : RemoveFileAt(path);
}
