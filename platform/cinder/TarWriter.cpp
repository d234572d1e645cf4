#include "cinder/TarWriter.h"

#include "cinder/EntryNames.h"
#include "cinder/TarName.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t kCopySize = std::size_t{64} * 1024; // stays in the processor's cache
constexpr unsigned kDirectoryPermissions = 0755;
constexpr unsigned kFilePermissions = 0644;

la_ssize_t AppendToFile(archive* handle, void* file, const void* data, std::size_t size) {
    if (static_cast<bFile*>(file)->Write(data, size) == bOK)
        return static_cast<la_ssize_t>(size);
    archive_set_error(handle, EIO, "the archive file cannot be written");
    return -1;
}

/// Whether every reader accepts an entry of this name.
bStatus NameStatus(const char* name) {
    if (name == nullptr || !IsConfinedTarName(name))
        return bERROR_PARAMETER;
    return std::strlen(name) < bTar_NAME_SIZE ? bOK : bERROR_TOO_LONG;
}

} // namespace

TarWriter::TarWriter(bAlloc allocator, bFile* file)
    : bTar(allocator),
      file(file),
      handle(archive_write_new(), &archive_write_free),
      entry(archive_entry_new(), &archive_entry_free),
      buffer(kCopySize, allocator) {
}

TarWriter::~TarWriter() {
    // Without this, an unfinished entry would be filled with zeros to its full size.
    if (handle)
        archive_write_fail(handle.get());
}

bStatus TarWriter::Open() {
    if (!handle || !entry)
        return bERROR_MEMORY;
    if (archive_write_set_format_pax_restricted(handle.get()) != ARCHIVE_OK ||
        archive_write_set_bytes_per_block(handle.get(), 0) != ARCHIVE_OK ||
        !PrepareToWriteNames(handle.get()) ||
        archive_write_open(handle.get(), file, nullptr, &AppendToFile, nullptr) != ARCHIVE_OK)
        return bERROR_FILE;
    return bOK;
}

bStatus TarWriter::BeginWrite(const char* name, int kind, std::int64_t size) {
    const bool isDirectory = kind == bTar_DIRECTORY;
    if (size < 0 || (isDirectory && size != 0) || (!isDirectory && kind != bTar_FILE))
        return bERROR_PARAMETER;
    FileFacts facts;
    facts.permissions = isDirectory ? kDirectoryPermissions : kFilePermissions;
    facts = std::exchange(described, std::nullopt).value_or(facts);
    facts.size = size;
    return WriteHeader(name, kind, facts);
}

bStatus TarWriter::WriteBlock(std::string_view block) {
    const auto size = static_cast<std::int64_t>(block.size());
    if (broken || size > left)
        return Broken();
    if (archive_write_data(handle.get(), block.data(), block.size()) != size)
        return Broken();
    left -= size;
    return left > 0 || archive_write_finish_entry(handle.get()) == ARCHIVE_OK ? bOK : Broken();
}

bStatus TarWriter::WriteFile(const char* name, bFile* source, std::int64_t size) {
    FileFacts before;
    if (source == nullptr || source->Ask(&before) != bOK || before.size != size)
        return bERROR_FILE;
    if (const bStatus status = WriteHeader(name, bTar_FILE, before); status != bOK)
        return status;
    FileFacts after;
    const bool complete = CopyData(source, size) == bOK && source->Ask(&after) == bOK && after == before;
    return complete ? bOK : Broken();
}

bStatus TarWriter::Close() {
    if (!handle)
        return bERROR_MEMORY;
    const auto locale = ArchiveLocale::Utf8();
    return !broken && left == 0 && archive_write_close(handle.get()) == ARCHIVE_OK ? bOK : bERROR_FILE;
}

bStatus TarWriter::WriteHeader(const char* name, int kind, const FileFacts& facts) {
    if (broken || left > 0)
        return Broken();
    if (const bStatus status = NameStatus(name); status != bOK)
        return status;
    if (entries >= bTar_MOST_ENTRIES)
        return bERROR_LIMIT;
    ++entries;
    const auto locale = ArchiveLocale::Utf8();
    archive_entry_clear(entry.get());
    SetName(entry.get(), name);
    archive_entry_set_filetype(entry.get(), kind == bTar_DIRECTORY ? AE_IFDIR : AE_IFREG);
    archive_entry_set_perm(entry.get(), static_cast<mode_t>(facts.permissions));
    archive_entry_set_size(entry.get(), facts.size);
    archive_entry_set_mtime(entry.get(), facts.modified, 0);
    // A warning is about a name that is not UTF-8; its bytes are kept.
    if (archive_write_header(handle.get(), entry.get()) < ARCHIVE_WARN)
        return Broken();
    left = facts.size;
    return bOK;
}

bStatus TarWriter::CopyData(bFile* source, std::int64_t size) {
    for (; size > 0; size = left) {
        const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(size, kCopySize));
        std::size_t count = 0;
        if (source->Read(buffer.data(), wanted, &count) != bOK || count < wanted)
            return bERROR_FILE;
        if (const bStatus status = WriteBlock({buffer.data(), count}); status != bOK)
            return status;
    }
    return bOK;
}

/// After a failure nothing more can be written.
bStatus TarWriter::Broken() {
    broken = true;
    return bERROR_FILE;
}
