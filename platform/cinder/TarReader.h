#pragma once

#include "cinder/TarName.h"
#include "cinder/bTar.h"

#include <memory>
#include <vector>

#include <archive.h>
#include <archive_entry.h>

/// The archive that is read: made by bTar_Construct, used through the bTar calls.
class TarReader final : public bTar {
  public:
    TarReader(bAlloc allocator, bFile* file);

    [[nodiscard]] bStatus Open();
    [[nodiscard]] bStatus BeginRead(char* name, std::size_t capacity, int* kind, std::int64_t* size);
    [[nodiscard]] bStatus ReadBlock(std::string_view* block);
    [[nodiscard]] const FileFacts& Facts() const { return facts; }
    [[nodiscard]] const char* LinkTarget() const { return linkTarget; }
    [[nodiscard]] std::string Reason() const;
    [[nodiscard]] const LeftOut& Links() const { return leftOut; }

  private:
    static la_ssize_t Fill(archive* handle, void* reader, const void** data);
    static la_int64_t Skip(archive* handle, void* reader, la_int64_t size);

    [[nodiscard]] bStatus NextHeader();
    [[nodiscard]] bool OnlyTheNamesCharactersAreOdd(int result) const;
    [[nodiscard]] bStatus StatusOfTheEnd() const;
    [[nodiscard]] bStatus Damage() const;
    void StartData();
    [[nodiscard]] bStatus FetchPiece();

    bFile* file;
    std::unique_ptr<archive, decltype(&archive_read_free)> handle;
    /// libarchive's own entry is not used: it is null after a lack of memory, which libarchive does not
    /// check.
    std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry;
    std::pmr::vector<char> buffer;
    std::int64_t archiveSize = 0;
    std::int64_t entries = 0;
    bool opened = false;
    LeftOut leftOut;
    std::int64_t holesLeft; ///< bytes that remain for the holes of sparse files
    bool fileFailed = false;

    // The current entry.
    FileFacts facts;
    const char* linkTarget = nullptr; ///< of a hard link
    std::int64_t entrySize = 0;
    bool holds = false; ///< the archive is long enough for the size of the entry
    std::int64_t delivered = 0;
    std::string_view piece; ///< data that was read but not yet delivered, and its offset
    std::int64_t pieceOffset = 0;
};
