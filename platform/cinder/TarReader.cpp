#include "cinder/TarReader.h"

#include "cinder/EntryNames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kReadSize = std::size_t{256} * 1024;
constexpr std::array<char, std::size_t{16} * 1024> kZeros{};
constexpr std::int64_t kEndMarkSize = 1024; ///< two blocks of zeros
/// A few bytes can describe a hole of any size, which takes as much disk: this limits the sum of all holes in
/// an archive.
constexpr std::int64_t kMaxHoles = std::int64_t{1} << 30U;

/// Old archivers mark a directory only by the "/" at the end of its name.
bool IsDirectory(archive_entry* entry, std::string_view name) {
    return archive_entry_filetype(entry) == AE_IFDIR ||
           (archive_entry_filetype(entry) == AE_IFREG && archive_entry_size(entry) == 0 &&
            name.ends_with('/'));
}

/// A link to another entry, without data; some archivers store the data with it.
bool IsHardLink(archive_entry* entry) {
    return archive_entry_hardlink(entry) != nullptr && archive_entry_size(entry) == 0;
}

bool IsLeftOut(archive_entry* entry) {
    const auto type = archive_entry_filetype(entry);
    const bool isKnown = type == AE_IFREG || type == AE_IFDIR || archive_entry_hardlink(entry) != nullptr;
    return !isKnown || archive_entry_symlink(entry) != nullptr;
}

/// The bytes of a sparse file that are not in the archive.
std::int64_t HolesOf(archive_entry* entry, std::int64_t size) {
    if (archive_entry_sparse_reset(entry) == 0)
        return 0;
    la_int64_t offset = 0;
    la_int64_t length = 0;
    std::int64_t data = 0;
    while (archive_entry_sparse_next(entry, &offset, &length) == ARCHIVE_OK)
        data += std::clamp<std::int64_t>(length, 0, size - data);
    return size - data;
}

std::string_view PathOf(archive_entry* entry) {
    const char* const path = archive_entry_pathname(entry);
    return path == nullptr ? "" : path;
}

bStatus CopyName(std::string_view name, char* buffer, std::size_t capacity) {
    const std::size_t length = std::min(name.size(), capacity - 1);
    name.copy(buffer, length);
    buffer[length] = '\0';
    return length == name.size() ? bOK : bERROR_TOO_LONG;
}

} // namespace

TarReader::TarReader(bAlloc allocator, bFile* file)
    : bTar(allocator),
      file(file),
      handle(archive_read_new(), &archive_read_free),
      entry(archive_entry_new(), &archive_entry_free),
      buffer(kReadSize, allocator),
      holesLeft(kMaxHoles) {
}

bStatus TarReader::Open() {
    if (!handle || !entry)
        return bERROR_MEMORY;
    FileFacts facts;
    if (file->Ask(&facts) != bOK)
        return bERROR_FILE;
    archiveSize = facts.size;
    const auto locale = ArchiveLocale::Bytes();
    archive_read_set_read_callback(handle.get(), &TarReader::Fill);
    archive_read_set_skip_callback(handle.get(), &TarReader::Skip);
    if (archive_read_set_callback_data(handle.get(), this) != ARCHIVE_OK ||
        archive_read_support_format_tar(handle.get()) != ARCHIVE_OK || !PrepareToReadNames(handle.get()))
        return bERROR_MEMORY;
    // This already reads the first header. If it is not a tar header, BeginRead reports it again.
    opened = archive_read_open1(handle.get()) == ARCHIVE_OK;
    // It gives no reason when there is no memory for its buffer.
    const int reason = opened ? 0 : archive_errno(handle.get());
    if (!opened && (reason == ENOMEM || reason == 0))
        return bERROR_MEMORY;
    return fileFailed ? bERROR_FILE : bOK;
}

bStatus TarReader::BeginRead(char* name, std::size_t capacity, int* kind, std::int64_t* size) {
    if (name == nullptr || capacity == 0 || kind == nullptr || size == nullptr)
        return bERROR_PARAMETER;
    const auto locale = ArchiveLocale::Bytes();
    if (const bStatus status = NextHeader(); status != bOK)
        return status;
    std::string_view path = PathOf(entry.get());
    const bool isLink = IsHardLink(entry.get());
    linkTarget = isLink ? archive_entry_hardlink(entry.get()) : nullptr;
    *kind = !isLink && IsDirectory(entry.get(), path) ? bTar_DIRECTORY : bTar_FILE;
    while (*kind == bTar_DIRECTORY && path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    facts = {.kind = *kind == bTar_DIRECTORY ? FileKind::Folder : FileKind::File,
             .size = *kind == bTar_FILE ? archive_entry_size(entry.get()) : 0,
             .modified = archive_entry_mtime(entry.get()),
             .modifiedFraction = archive_entry_mtime_nsec(entry.get()),
             .permissions = archive_entry_perm(entry.get()) & kPermissionBits};
    *size = facts.size;
    StartData();
    return CopyName(path, name, capacity);
}

bStatus TarReader::ReadBlock(std::string_view* block) {
    if (!holds)
        return bERROR_FORMAT;
    if (delivered == entrySize)
        return bERROR_END;
    if (piece.empty() && pieceOffset <= delivered) {
        if (const bStatus status = FetchPiece(); status != bOK)
            return status;
    }
    if (delivered < pieceOffset) {
        const auto hole = static_cast<std::size_t>(pieceOffset - delivered);
        *block = std::string_view(kZeros.data(), std::min(hole, kZeros.size()));
    } else {
        *block = std::exchange(piece, {});
    }
    delivered += static_cast<std::int64_t>(block->size());
    return bOK;
}

std::string TarReader::Reason() const {
    const std::string at = " at byte " + std::to_string(archive_filter_bytes(handle.get(), -1));
    if (fileFailed)
        return file->Failure() ? file->Failure().message() + at : "unreadable" + at;
    if (entrySize > 0 && !holds)
        return "an entry claims more bytes than the archive can hold" + at;
    const char* const words = archive_error_string(handle.get());
    return (words == nullptr ? "it ends without its end mark" : std::string(words)) + at;
}

la_ssize_t TarReader::Fill(archive* handle, void* reader, const void** data) {
    auto* const self = static_cast<TarReader*>(reader);
    std::string_view block;
    const bStatus status = self->file->ReadBlock(self->buffer.data(), self->buffer.size(), &block);
    *data = block.data();
    if (status == bOK)
        return static_cast<la_ssize_t>(block.size());
    self->fileFailed = true;
    archive_set_error(handle, EIO, "the archive file cannot be read");
    return -1;
}

la_int64_t TarReader::Skip(archive* /*handle*/, void* reader, la_int64_t size) {
    return std::max<la_int64_t>(0, static_cast<TarReader*>(reader)->file->Skip(size));
}

bStatus TarReader::Damage() const {
    if (archive_errno(handle.get()) == ENOMEM)
        return bERROR_MEMORY;
    return fileFailed ? bERROR_FILE : bERROR_FORMAT;
}

bStatus TarReader::NextHeader() try {
    if (!opened)
        return Damage();
    for (;;) {
        if (entries >= bTar_MOST_ENTRIES)
            return bERROR_LIMIT;
        ++entries;
        const int result = archive_read_next_header2(handle.get(), entry.get());
        if (result == ARCHIVE_EOF)
            return StatusOfTheEnd();
        if (result != ARCHIVE_OK && !OnlyTheNamesCharactersAreOdd(result))
            return Damage();
        if (!TakeNames(entry.get()))
            return bERROR_FORMAT;
        if (!IsLeftOut(entry.get()))
            return bOK;
        leftOut.Add(PathOf(entry.get()));
    }
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
}

/// The warning about names beyond ASCII that are read as bytes. Any other warning means that something in a
/// header was ignored, perhaps the record with the entry's full name.
bool TarReader::OnlyTheNamesCharactersAreOdd(int result) const {
    return TakesNamesOfAnyBytes() && result == ARCHIVE_WARN && archive_errno(handle.get()) == EILSEQ;
}

/// An archive truncated between two entries looks complete except for the missing end mark.
bStatus TarReader::StatusOfTheEnd() const {
    const std::int64_t endMark =
        archive_filter_bytes(handle.get(), -1) - archive_read_header_position(handle.get());
    return endMark >= kEndMarkSize ? bERROR_END : Damage();
}

/// Starts the data of an entry. What is not a hole must be in the archive file, and the holes of all entries
/// are limited: a sparse file of terabytes fits into a few blocks.
void TarReader::StartData() {
    const std::int64_t left = archiveSize - archive_filter_bytes(handle.get(), -1);
    const std::int64_t size = facts.size;
    const std::int64_t holes = size < 0 ? 0 : HolesOf(entry.get(), size);
    holds = size >= 0 && size - holes <= left && holes <= holesLeft;
    holesLeft -= holds ? holes : 0;
    entrySize = size;
    delivered = 0;
    piece = {};
    pieceOffset = 0;
}

/// Reads the next piece of data; at the end of the data, the rest of the entry is a hole.
bStatus TarReader::FetchPiece() {
    const auto locale = ArchiveLocale::Bytes();
    const void* data = nullptr;
    std::size_t count = 0;
    la_int64_t offset = 0;
    int result = ARCHIVE_OK;
    do {
        result = archive_read_data_block(handle.get(), &data, &count, &offset);
    } while (count == 0 && result >= ARCHIVE_WARN && result < ARCHIVE_EOF);
    if (result < ARCHIVE_WARN)
        return Damage();
    pieceOffset = result == ARCHIVE_EOF ? entrySize : offset;
    if (result != ARCHIVE_EOF)
        piece = std::string_view(static_cast<const char*>(data), count);
    const bool inOrder = pieceOffset >= delivered && pieceOffset <= entrySize &&
                         static_cast<std::int64_t>(piece.size()) <= entrySize - pieceOffset;
    return inOrder ? bOK : bERROR_FORMAT;
}
