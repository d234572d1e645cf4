#include "basalt/bDirectory.h"

#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"

#include <algorithm>
#include <string>

namespace {

void SetReason(std::error_code* why, const std::error_code& reason) {
    if (why != nullptr)
        *why = reason;
}

bStatus List(const char* path, FileKind kind, bArrayList* list, std::error_code* why) {
    list->Clear();
    FolderReader reader(path);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        if (entry.kind == kind && (status = list->Add(entry.name)) != bOK)
            return status;
    SetReason(why, reader.Failure());
    if (status != bERROR_END)
        return status;
    list->Sort();
    return bOK;
}

} // namespace

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

int bDirectory_Exists(const char* path) {
    FileFacts facts;
    return !AskPath(path, &facts) && facts.kind == FileKind::Folder ? 1 : 0;
}

bStatus bDirectory_Create(const char* path, std::error_code* why) {
    const std::error_code failure = MakeFolderAt(path);
    SetReason(why, failure);
    return failure ? bERROR_FILE : bOK;
}

bStatus bDirectory_Delete(const char* path, std::error_code* why) {
    FileFacts facts;
    std::error_code failure = AskPathItself(path, &facts);
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory)
        return bERROR_NOT_FOUND;
    failure = bDirectory_Exists(path) != 0 ? RemoveTreeAt(path) : make_error_code(std::errc::not_a_directory);
    SetReason(why, failure);
    return failure ? bERROR_FILE : bOK;
}

bStatus bDirectory_ListFiles(const char* path, bArrayList* list, std::error_code* why) {
    return List(path, FileKind::File, list, why);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list, std::error_code* why) {
    return List(path, FileKind::Folder, list, why);
}
