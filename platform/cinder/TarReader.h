#pragma once

#include "cinder/bTar.h"

#include <memory>
#include <vector>

#include <archive.h>
#include <archive_entry.h>

/// The archive that is read: bTar_Construct makes it, the bTar calls lead here.
class TarReader final : public bTar {
  public:
    TarReader(bAlloc allocator, bFile* file);

    [[nodiscard]] bStatus Open();
    [[nodiscard]] bStatus BeginRead(char* name, std::size_t capacity, int* kind, std::int64_t* size);
    [[nodiscard]] bStatus ReadBlock(std::string_view* block);
    [[nodiscard]] unsigned Permissions() const { return permissions; }
    [[nodiscard]] std::int64_t PassedOver() const { return passedOver; }

  private:
    static la_ssize_t Fill(archive* handle, void* reader, const void** data);
    static la_int64_t Skip(archive* handle, void* reader, la_int64_t size);

    [[nodiscard]] bStatus NextHeader();
    [[nodiscard]] bool OnlyTheNamesCharactersAreOdd(int result) const;
    [[nodiscard]] bStatus StatusOfTheEnd() const;
    [[nodiscard]] bStatus Damage() const;
    void Promise(std::int64_t size);
    [[nodiscard]] bStatus FetchPiece();

    bFile* file;
    std::unique_ptr<archive, decltype(&archive_read_free)> handle;
    /// The library's own entry, which it does not check when there was no memory for it, is not used.
    std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry;
    std::pmr::vector<char> buffer;
    std::int64_t archiveSize = 0;
    std::int64_t entries = 0;
    bool opened = false;
    std::int64_t passedOver = 0; ///< entries that are neither files nor directories
    bool fileFailed = false;

    // The current entry.
    unsigned permissions = 0;
    std::int64_t entrySize = 0;
    std::int64_t promised = 0; ///< the sizes of all entries so far
    bool holds = false;        ///< the archive is long enough for what the entry says
    std::int64_t delivered = 0;
    std::string_view piece; ///< data that is read and not yet delivered, and where it belongs
    std::int64_t pieceOffset = 0;
};
