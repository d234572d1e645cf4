#pragma once

#include "basalt/AtomicFile.h"
#include "basalt/InputFile.h"
#include "basalt/bObject.h"
#include "basalt/bStatus.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>

constexpr int bFile_READ = 1;  ///< mode of a file, and of an archive in it, that is read
constexpr int bFile_WRITE = 2; ///< mode of a file, and of an archive in it, that is written

/// A regular file that is open for reading from its start, or for writing. What is written appears under the
/// name atomically with bFile_Commit; destroyed without it, the old file is untouched.
class bFile final : public bObject {
  public:
    /// Returns the next bytes in `*block`, none only at the end: bytes already in memory directly, others
    /// read into `buffer`. They are valid until the next call.
    /// @return 1; another status on failure.
    using Source = std::function<bStatus(char* buffer, std::size_t capacity, std::string_view* block)>;

    /// Receives the next bytes that are written. @return 1; another status on failure.
    using Sink = std::function<bStatus(const void* data, std::size_t size)>;

    explicit bFile(bAlloc allocator) : bObject(allocator) {}

    /// @return 1; bERROR_NOT_FOUND; bERROR_FILE when it cannot be opened or is not a regular file.
    [[nodiscard]] bStatus OpenToRead(const char* path);
    /// Opens something that is not a file, such as a part of another one, to be read by ReadBlock.
    /// @param size how many bytes the source has
    void OpenToRead(Source from, std::int64_t size);
    /// @return 1; bERROR_FILE; bERROR_MEMORY.
    [[nodiscard]] bStatus OpenToWrite(const char* path);
    /// Opens something that is not a file to be written by Write; it is never committed.
    void OpenToWrite(Sink to) { sink = std::move(to); }

    /// Reads up to `capacity` bytes; fewer only at the end of the file.
    /// @return 1 and the number of bytes in `*count`; bERROR_FILE, also for a source.
    [[nodiscard]] bStatus Read(void* data, std::size_t capacity, std::size_t* count);
    /// Returns the next bytes as a source does.
    [[nodiscard]] bStatus ReadBlock(char* buffer, std::size_t capacity, std::string_view* block);
    /// Advances the reading position by `size` bytes, not beyond the end.
    /// @return the bytes actually skipped; -1 on failure
    [[nodiscard]] std::int64_t Skip(std::int64_t size);
    /// Facts of a file that is read. @return 1; bERROR_FILE.
    [[nodiscard]] bStatus Ask(FileFacts* facts);

    /// Appends bytes. A failure of the disk is found by bFile_Commit at the latest.
    /// @return 1; bERROR_FILE when the file is not open for writing or a write has failed already.
    [[nodiscard]] bStatus Write(const void* data, std::size_t size);
    [[nodiscard]] bStatus SetWriteBuffer(std::size_t size);
    [[nodiscard]] bStatus Commit();

    /// The system's error of the last failure of the file.
    [[nodiscard]] std::error_code Failure() const { return output ? output->Failure() : input.Failure(); }

  private:
    InputFile input;
    Source source; ///< instead of a file that is read
    std::int64_t sourceSize = 0;
    std::optional<AtomicFile> output;
    Sink sink; ///< instead of a file that is written
};

/// Nonzero when `path` names an existing regular file.
int bFile_Exists(const char* path);

/// Removes the file `path`.
/// @return 1; bERROR_NOT_FOUND when there is none; bERROR_FILE when it cannot be removed.
bStatus bFile_Delete(const char* path);

/// The size of a regular file in bytes; -1 when there is none.
std::int64_t bFile_Size(const char* path);

/// Opens a file; `mode` is bFile_READ or bFile_WRITE.
/// @param why gets the system's error when it cannot be opened
/// @return 1; bERROR_NOT_FOUND; bERROR_FILE; bERROR_MEMORY; bERROR_PARAMETER. `*file` is null unless 1.
bStatus bFile_Construct(bFile** file, const char* path, int mode, bAlloc allocator,
                        std::error_code* why = nullptr);

/// Opens a source of `size` bytes as a file that is read.
/// @return 1; bERROR_MEMORY; bERROR_PARAMETER. `*file` is null unless 1.
bStatus bFile_ConstructOver(bFile** file, bFile::Source source, std::int64_t size, bAlloc allocator);

/// Opens a sink as a file that is written.
/// @return 1; bERROR_MEMORY; bERROR_PARAMETER. `*file` is null unless 1.
bStatus bFile_ConstructInto(bFile** file, bFile::Sink sink, bAlloc allocator);

/// Gives a file opened for writing a buffer of `size` bytes.
/// @return 1; bERROR_MEMORY; bERROR_PARAMETER for a file that is read.
bStatus bFile_SetWriteBuffer(bFile* file, std::size_t size);

/// Replaces the old file by what was written, once all of it is synced to the disk; the file is then closed.
/// @return 1; bERROR_FILE, the old file is then unchanged.
bStatus bFile_Commit(bFile* file);
