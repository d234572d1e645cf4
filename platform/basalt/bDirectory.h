#pragma once

#include "basalt/bObject.h"
#include "basalt/bStatus.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// Text in memory of an allocator.
using bString = std::pmr::string;

/// What a list holds.
enum class bType { String = 1 };

/// The type of bString.
constexpr bType bString_TYPE = bType::String;

/// A growing list of strings.
class bArrayList final : public bObject {
  public:
    /// @throws std::bad_alloc when there is no memory for `capacity` items
    bArrayList(bAlloc allocator, std::size_t capacity);

    /// @return 1; bERROR_MEMORY, the list is then as before.
    [[nodiscard]] bStatus Add(std::string_view text);
    void Clear() { items.clear(); }
    /// Sorts the items by their bytes.
    void Sort();
    [[nodiscard]] const std::pmr::vector<bString>& Items() const { return items; }

  private:
    std::pmr::vector<bString> items;
};

/// Makes an empty list with capacity for `capacity` items.
/// @return 1; bERROR_PARAMETER for an unknown type or a null pointer; bERROR_MEMORY.
bStatus bArrayList_Construct(bArrayList** list, bType type, std::size_t capacity, bAlloc allocator);

// The last argument of each call that can fail optionally receives the system's error.

/// Nonzero when `path` names a directory, through a symbolic link too.
int bDirectory_Exists(const char* path);

/// Makes one directory; its parent must exist.
/// @return 1; bERROR_FILE when it cannot be made or the name is taken.
bStatus bDirectory_Create(const char* path, std::error_code* why = nullptr);

/// Removes a directory with everything in it. Symbolic links are removed and never followed, `path` included:
/// nothing outside the tree is touched.
/// @return 1; bERROR_NOT_FOUND when it does not exist; bERROR_FILE when it is not a directory or something in
///         it cannot be removed.
bStatus bDirectory_Delete(const char* path, std::error_code* why = nullptr);

/// Replaces the content of `list` by the bare names of the regular files directly in `path`; symbolic links,
/// even to regular files, are omitted. The names are sorted by their bytes, so that equal trees give equal
/// lists on any file system.
/// @return 1; bERROR_FILE when the directory cannot be read; bERROR_MEMORY.
bStatus bDirectory_ListFiles(const char* path, bArrayList* list, std::error_code* why = nullptr);

/// The same for the directories directly in `path`, without ".", ".." and symbolic links.
bStatus bDirectory_ListDirectories(const char* path, bArrayList* list, std::error_code* why = nullptr);
