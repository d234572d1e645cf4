#pragma once

#include "basalt/FileFacts.h"
#include "basalt/FolderHandle.h"
#include "basalt/bStatus.h"

#include <memory>
#include <string_view>
#include <system_error>

/// One name in a folder.
struct FolderEntry {
    std::string_view name; ///< valid until the next entry is read
    FileKind kind = FileKind::Other;
};

/// Reads the names in a folder one after the other, in the system's order, without "." and "..". A folder
/// that cannot be read to its end is a failure, never a smaller or empty one.
class FolderReader final {
  public:
    /// Opens the folder at a path, through symbolic links too.
    explicit FolderReader(const char* path);
    explicit FolderReader(const FolderHandle& folder);

    /// Reads the next name; one that vanishes meanwhile is skipped.
    /// @return 1; bERROR_END after the last one; bERROR_FILE, also when the folder could not be opened;
    ///         bERROR_MEMORY
    [[nodiscard]] bStatus Next(FolderEntry* entry);
    /// The system's error after a failure.
    [[nodiscard]] std::error_code Failure() const { return failure; }

  private:
    struct Closer {
        void operator()(void* folder) const;
    };

    std::unique_ptr<void, Closer> folder; ///< the system's own object
    std::error_code failure;
};
