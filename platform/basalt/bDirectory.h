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

/// A growing list of texts.
class bArrayList final : public bObject {
  public:
    /// @throws std::bad_alloc when there is no memory for `capacity` items
    bArrayList(bAlloc allocator, std::size_t capacity);

    /// @return 1; bERROR_MEMORY, the list is then as before.
    [[nodiscard]] bStatus Add(std::string_view text);
    void Clear() { items.clear(); }
    /// Brings the items in the order of their bytes.
    void Sort();
    [[nodiscard]] const std::pmr::vector<bString>& Items() const { return items; }

  private:
    std::pmr::vector<bString> items;
};

/// Makes an empty list with room for `capacity` items.
/// @return 1; bERROR_PARAMETER for an unknown type or a null pointer; bERROR_MEMORY.
bStatus bArrayList_Construct(bArrayList** list, bType type, std::size_t capacity, bAlloc allocator);

// Each call that can fail has a last argument that gets the system's reason, for whoever wants it.

/// Nonzero when `path` names a directory, through a symbolic link too.
int bDirectory_Exists(const char* path);

/// Makes one directory; the one it lies in must be there.
/// @return 1; bERROR_FILE when it cannot be made or the name is taken.
bStatus bDirectory_Create(const char* path, std::error_code* why = nullptr);

/// Removes a directory with everything in it. Symbolic links are removed and never followed, `path` included:
/// nothing outside the tree is touched.
/// @return 1; bERROR_NOT_FOUND when nothing stands there; bERROR_FILE when it is no directory or something in
///         it cannot be removed.
bStatus bDirectory_Delete(const char* path, std::error_code* why = nullptr);

/// Replaces the content of `list` by the bare names of the regular files directly in `path`; symbolic links,
/// even to regular files, are left out. The names come in the order of their bytes, so that two equal trees
/// give equal lists on any file system.
/// @return 1; bERROR_FILE when the directory cannot be read; bERROR_MEMORY.
bStatus bDirectory_ListFiles(const char* path, bArrayList* list, std::error_code* why = nullptr);

/// The same for the directories directly in `path`, "." and ".." and symbolic links left out.
bStatus bDirectory_ListDirectories(const char* path, bArrayList* list, std::error_code* why = nullptr);
