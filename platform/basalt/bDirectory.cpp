#include "basalt/bDirectory.h"

#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"

#include <string>

namespace {

bStatus List(const char* path, FileKind kind, bArrayList* list) {
    list->Clear();
    FolderReader reader(path);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        if (entry.kind == kind && (status = list->Add(entry.name)) != bOK)
            return status;
    if (status != bERROR_END)
        return status;
    list->Sort();
    return bOK;
}

} // namespace

int bDirectory_Exists(const char* path) {
    FileFacts facts;
    return !AskPath(path, &facts) && facts.kind == FileKind::Folder ? 1 : 0;
}

bStatus bDirectory_Create(const char* path) {
    return MakeFolderAt(path) ? bERROR_FILE : bOK;
}

bStatus bDirectory_Delete(const char* path) {
    FileFacts facts;
    const std::error_code missing = AskPathItself(path, &facts);
    if (missing == std::errc::no_such_file_or_directory || missing == std::errc::not_a_directory)
        return bERROR_NOT_FOUND;
    if (bDirectory_Exists(path) == 0)
        return bERROR_FILE;
    return RemoveTreeAt(path) ? bERROR_FILE : bOK;
}

bStatus bDirectory_ListFiles(const char* path, bArrayList* list) {
    return List(path, FileKind::File, list);
}

bStatus bDirectory_ListDirectories(const char* path, bArrayList* list) {
    return List(path, FileKind::Folder, list);
}
