#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// A file that appears under its name whole or not at all.
///
/// The bytes go to a hidden file beside the target (".corvane-" and six letters); Commit checks that every
/// one of them has reached the disk and puts the file in place by renaming. Until then, and after any
/// failure, whatever stood under the name is untouched. An existing target keeps its permissions, and its
/// owner and group where this user may give them; a symbolic link is followed, so that the link stays a link.
/// Not safe for use from two threads at once.
class AtomicFile {
  public:
    /// Starts writing beside `path`; IsOpen tells whether that was possible. A target that exists and is not
    /// a regular file, or that this user may not write, is not opened.
    explicit AtomicFile(const std::string& path);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    /// Removes what was written unless it was committed.
    ~AtomicFile();

    [[nodiscard]] bool IsOpen() const { return descriptor >= 0; }

    /// Whether a write has failed already, so that a long job can stop early.
    [[nodiscard]] bool HasFailed() const { return failed; }

    /// Appends bytes. A failure (a full disk) is remembered: later writes do nothing and Commit fails.
    void Write(const void* data, std::size_t size);
    void Write(std::string_view text) { Write(text.data(), text.size()); }

    /// Flushes, syncs, renames and syncs the folder; the object is closed afterwards.
    /// @return false when any byte could not be written safely; the old file then still stands, but for a
    /// failed
    ///         sync of the folder, where the new one does.
    [[nodiscard]] bool Commit();

  private:
    void WriteThrough(const char* data, std::size_t size);
    bool FlushBuffer();
    void Discard();

    std::string target;
    std::string beside;
    std::string buffer;
    int descriptor = -1;
    bool failed = false;
};

/// Brings the names of the folder that the file lies in to the disk: after a renaming, the new one. A folder
/// that this user may not list, and one of a file system that syncs no folders, are left to the system.
/// @return false when that failed
[[nodiscard]] bool SyncFolderOf(const std::string& path);
