#pragma once

#include "cinder/bTar.h"

#include <memory>
#include <optional>
#include <vector>

#include <archive.h>
#include <archive_entry.h>

/// The archive that is written: made by bTar_Construct, used through the bTar calls.
class TarWriter final : public bTar {
  public:
    TarWriter(bAlloc allocator, bFile* file);
    ~TarWriter() override;

    [[nodiscard]] bStatus Open();
    [[nodiscard]] bStatus BeginWrite(const char* name, int kind, std::int64_t size);
    void Describe(const FileFacts& facts) { described = facts; }
    [[nodiscard]] bStatus WriteBlock(std::string_view block);
    [[nodiscard]] bStatus WriteFile(const char* name, bFile* source, std::int64_t size);
    /// Writes the end mark; fails without it when any entry is incomplete.
    [[nodiscard]] bStatus Close() override;

  private:
    [[nodiscard]] bStatus WriteHeader(const char* name, int kind, const FileFacts& facts);
    [[nodiscard]] bStatus CopyData(bFile* source, std::int64_t size);
    [[nodiscard]] bStatus Broken();

    bFile* file;
    std::unique_ptr<archive, decltype(&archive_write_free)> handle;
    std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry;
    std::pmr::vector<char> buffer;
    std::optional<FileFacts> described; ///< for the next entry
    std::int64_t entries = 0;
    std::int64_t left = 0; ///< bytes of the current entry's data that are still missing
    bool broken = false;
};
