#pragma once

#include "basalt/bObject.h"

#include <cstddef>
#include <string>
#include <string_view>
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
