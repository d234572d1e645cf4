#include "basalt/bArrayList.h"

#include <algorithm>

bArrayList::bArrayList(bAlloc allocator, std::size_t capacity) : bObject(allocator), items(allocator) {
    items.reserve(capacity);
}

bStatus bArrayList::Add(std::string_view text) {
    try {
        items.emplace_back(text);
    } catch (const std::bad_alloc&) {
        return bERROR_MEMORY;
    }
    return bOK;
}

void bArrayList::Sort() {
    std::sort(items.begin(), items.end());
}

bStatus bArrayList_Construct(bArrayList** list, bType type, std::size_t capacity, bAlloc allocator) {
    if (type != bString_TYPE)
        return bERROR_PARAMETER;
    return bObject_New(list, allocator, capacity);
}
