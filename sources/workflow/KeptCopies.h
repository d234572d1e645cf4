#pragma once

#include "basalt/FolderHandle.h"
#include "workflow/KeptName.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// The user's own copies of what the program is about to discard. They are ordinary files, private to the
/// user, in a folder that is created for the first one; several editors of one user may share it.
///
/// A copy appears atomically. After each new one the oldest are removed until the limits hold; the new one
/// always stays, and files that are not named like copies are neither counted nor touched. A failure is
/// logged with its reason and reported; nothing is thrown, so that no caller's sequence depends on it. For
/// one thread.
class KeptCopies final {
  public:
    struct Limits {
        std::size_t copies = 50;
        std::uint64_t bytes = std::uint64_t{2} << 30; ///< of all copies together
    };

    /// Makes the content of a copy: writes the file at the path, which exists and is empty, and syncs it to
    /// the disk, as AtomicFile does. @return whether it did
    using Writer = std::function<bool(const std::string& path)>;
    /// Returns the time, in seconds since 1970.
    using Clock = std::function<std::time_t()>;

    /// @param folder an absolute path, such as DefaultKeptFolder's
    explicit KeptCopies(std::string folder);
    KeptCopies(std::string folder, Limits limits, Clock clock);

    [[nodiscard]] const std::string& Folder() const { return folder; }

    /// Keeps an unchanged copy of a file. @return the path of the copy; nothing when it could not be kept
    std::optional<std::string> KeepFile(const std::string& path, KeptReason reason);

    /// Keeps what `writer` makes.
    /// @param original the name, or the path, of the file that it is made from
    /// @param extension of the copy in place of the original's
    /// @return the path of the copy; nothing when it could not be kept
    std::optional<std::string> KeepWritten(const std::string& original, KeptReason reason,
                                           const Writer& writer, std::string_view extension = {});

  private:
    /// Writes the file at a path. @throws std::exception with the reason when that fails
    using Write = std::function<void(const std::string& path)>;

    std::optional<std::string> Keep(const std::string& original, KeptReason reason,
                                    std::string_view extension, const Write& write) noexcept;
    std::string Place(const KeptName& name, const Write& write) const;
    void RemoveOldest(const FolderHandle& opened, const std::string& newest) const;
    void LogNotKept(const std::string& original, KeptReason reason, const char* why) const noexcept;

    std::string folder;
    Limits limits;
    Clock clock;
};

/// Keeps a text track before a save puts a binary one in its place, whose heights have only 16 bits. Other
/// files need no copy.
/// @return false when a text track could not be kept, or the file's encoding cannot be determined; the log
/// says why
bool KeepTextOriginal(KeptCopies& copies, const std::string& target);
