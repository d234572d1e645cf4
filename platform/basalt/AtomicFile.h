#pragma once

#include "basalt/FolderHandle.h"
#include "basalt/HiddenFile.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// A file that appears under its name atomically.
///
/// The bytes go to a hidden file beside the target; Commit checks that every one of them has reached the disk
/// and puts the file in place by renaming. Until then, and after any failure, the old file is untouched. An
/// existing target keeps its permissions, and its owner and group where this user may give them; a symbolic
/// link is followed, so that the link stays a link. Not safe for use from two threads at once.
class AtomicFile final {
  public:
    static constexpr std::size_t kBufferSize = std::size_t{64} * 1024;

    /// Starts writing beside `path`; IsOpen says whether that was possible. A target that exists and is not a
    /// regular file, or that this user may not write, is not opened.
    /// @param bufferSize bytes that are collected before they are written; 0 for none
    /// @param memory where the buffer comes from; outlives the file
    /// @throws std::bad_alloc
    explicit AtomicFile(const std::string& path, std::size_t bufferSize = kBufferSize,
                        std::pmr::memory_resource* memory = std::pmr::get_default_resource());
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    /// Removes what was written unless it was committed.
    ~AtomicFile() = default;

    [[nodiscard]] bool IsOpen() const { return file && file->IsOpen(); }

    /// Whether a write has failed already, so that a long job can stop early.
    [[nodiscard]] bool HasFailed() const { return failed; }
    /// The system's error when the file could not be opened, written or committed.
    [[nodiscard]] std::error_code Failure() const { return failure; }

    /// Resizes the buffer. @throws std::bad_alloc, std::length_error
    void SetBufferSize(std::size_t size);

    /// Appends bytes. A failure (a full disk) is remembered: later writes do nothing and Commit fails.
    void Write(const void* data, std::size_t size);
    void Write(std::string_view text) { Write(text.data(), text.size()); }

    /// Appends another file from its reading position on. A failure is remembered like one of writing.
    /// @return the bytes appended
    std::int64_t Append(InputFile& source);

    /// Flushes, syncs, renames and syncs the folder; the object is closed afterwards.
    /// @return false when any byte could not be written safely; the old file is still in place then, except
    ///         after a failed sync of the folder, when the new one is
    [[nodiscard]] bool Commit();

  private:
    void Open(bool exists);
    void WriteThrough(const void* data, std::size_t size);
    void FlushBuffer();
    void Fail(std::error_code reason);

    std::string target;
    FolderHandle folder;
    std::optional<HiddenFile> file;
    std::pmr::vector<char> buffer;
    std::size_t bufferSize;
    bool failed = false;
    std::error_code failure;
};

/// Copies a file byte for byte, as AtomicFile writes.
/// @return the reason when that failed: resource_unavailable_try_again for a file that was changed meanwhile;
///         the target is then unchanged, except after a failed sync of its folder
[[nodiscard]] std::error_code CopyAtomically(const std::string& from, const std::string& target);

/// Replaces the existing file `target` by the finished file `from`, atomically: by renaming where both are in
/// one file system and belong to one owner and group, else by a copy (`from` then stays). The target keeps
/// its permissions, its owner and its group as AtomicFile does, and a link stays a link.
/// @return the reason when `target` cannot be written; it is then unchanged, except after a failed sync of
///         its folder, when it has the new content
[[nodiscard]] std::error_code ReplaceAtomically(const std::string& from, const std::string& target);
