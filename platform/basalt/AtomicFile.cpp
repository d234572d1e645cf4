#include "basalt/AtomicFile.h"

#include "basalt/FileOwnership.h"
#include "basalt/FilePath.h"
#include "basalt/InputFile.h"

#include <array>

namespace {

/// Why an existing file may not be replaced.
std::error_code RefusalOf(FileKind kind, const std::string& path) {
    if (kind == FileKind::Folder)
        return std::make_error_code(std::errc::is_a_directory);
    if (kind != FileKind::File)
        return std::make_error_code(std::errc::not_supported);
    return MayWrite(path) ? std::error_code() : std::make_error_code(std::errc::permission_denied);
}

/// Renames `from` to `target` if it can keep the owner, group and permissions of `target`.
/// @return whether it did
bool MoveTo(const std::string& target, const std::string& from) {
    const auto old = FileOwnership::Of(target);
    const auto fresh = FileOwnership::Of(from);
    if (!old || !fresh || !fresh->BelongsLike(*old) || !old->GiveTo(from))
        return false;
    return !MovePath(target, from);
}

} // namespace

AtomicFile::AtomicFile(const std::string& path, std::size_t bufferSize, std::pmr::memory_resource* memory)
    : target(LinksFollowed(path)), buffer(memory), bufferSize(bufferSize) {
    FileFacts facts;
    failure = AskPath(path, &facts);
    const bool exists = !failure;
    if (exists)
        failure = RefusalOf(facts.kind, target);
    else if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory)
        failure.clear(); // any other failure is reported, such as a cycle of links
    if (!failure)
        Open(exists);
    failed = failed || !IsOpen();
}

void AtomicFile::Open(bool exists) {
    buffer.reserve(bufferSize); // before the file is created, so that a lack of memory leaves no file
    folder = FolderHandle(FolderOf(target), FolderHandle::Links::Followed);
    // A file that replaces another is private until it has the other's permissions.
    file.emplace(folder, exists ? 0600U : 0666U);
    failure = file->Failure();
    if (!exists || !IsOpen())
        return;
    const auto ownership = FileOwnership::Of(target);
    if (!ownership || !file->TakeOver(*ownership))
        Fail(file->Failure());
}

void AtomicFile::SetBufferSize(std::size_t size) {
    buffer.reserve(size);
    bufferSize = size;
}

void AtomicFile::Write(const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const char*>(data);
    if (buffer.size() + size > bufferSize)
        FlushBuffer();
    if (size >= bufferSize)
        WriteThrough(bytes, size);
    else if (!failed)
        buffer.insert(buffer.end(), bytes, bytes + size);
}

std::int64_t AtomicFile::Append(InputFile& source) {
    FlushBuffer();
    std::int64_t appended = failed ? 0 : file->Append(source);
    std::array<char, kBufferSize> piece{};
    std::size_t count = piece.size();
    while (count == piece.size() && !failed) {
        if (!source.Read(piece.data(), piece.size(), &count))
            Fail(source.Failure());
        WriteThrough(piece.data(), count);
        appended += static_cast<std::int64_t>(count);
    }
    return appended;
}

bool AtomicFile::Commit() {
    if (!IsOpen())
        return false;
    FlushBuffer();
    if (!failed && !(file->Sync() && file->Keep(NameOf(target))))
        Fail(file->Failure());
    file.reset(); // also removes the hidden file, which could not be kept
    if (!failed)
        failure = folder.Sync();
    return !failed && !failure;
}

void AtomicFile::WriteThrough(const void* data, std::size_t size) {
    if (!failed && size > 0 && !file->Write(data, size))
        Fail(file->Failure());
}

void AtomicFile::FlushBuffer() {
    WriteThrough(buffer.data(), buffer.size());
    buffer.clear();
}

void AtomicFile::Fail(std::error_code reason) {
    failed = true;
    failure = reason;
}

std::error_code CopyAtomically(const std::string& from, const std::string& target) {
    InputFile source(from.c_str());
    if (!source.IsOpen())
        return source.Failure();
    AtomicFile copy(target, 0);
    const std::int64_t size = copy.Append(source);
    FileFacts facts;
    if (!source.Ask(&facts))
        return source.Failure();
    if (!copy.HasFailed() && size != facts.size)
        return std::make_error_code(std::errc::resource_unavailable_try_again);
    return copy.Commit() ? std::error_code() : copy.Failure();
}

std::error_code ReplaceAtomically(const std::string& from, const std::string& target) {
    FileFacts facts;
    if (const std::error_code failure = AskPath(target, &facts))
        return failure;
    if (facts.kind != FileKind::File)
        return std::make_error_code(std::errc::not_supported);
    const std::string place = LinksFollowed(target);
    if (!MayWrite(place))
        return std::make_error_code(std::errc::permission_denied);
    if (!MoveTo(place, from))
        return CopyAtomically(from, place);
    return FolderHandle(FolderOf(place), FolderHandle::Links::Followed).Sync();
}
