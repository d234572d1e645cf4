#include "basalt/FolderReader.h"

#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"
#include "basalt/windows/WideText.h"

#include <cstddef>
#include <new>

namespace {

/// A folder's list on its way, a piece at a time.
struct List {
    FileDescriptor folder;
    alignas(8) std::byte piece[std::size_t{32} * 1024]{};
    const FILE_ID_BOTH_DIR_INFO* next = nullptr; ///< none where another piece is to be read
    std::string name;

    /// @return null at the end, and on a failure: the reason is in LastError
    const FILE_ID_BOTH_DIR_INFO* Take() {
        if (next == nullptr) {
            if (GetFileInformationByHandleEx(HandleOf(folder.Number()), FileIdBothDirectoryInfo, piece,
                                             sizeof piece) == FALSE)
                return nullptr;
            next = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(piece);
        }
        const FILE_ID_BOTH_DIR_INFO* const taken = next;
        next = taken->NextEntryOffset == 0
                   ? nullptr
                   : reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(
                         reinterpret_cast<const std::byte*>(taken) + taken->NextEntryOffset);
        return taken;
    }
};

/// @return null when it could not be opened
List* Opened(HANDLE folder, std::error_code* failure) {
    FileFacts facts;
    FileDescriptor owned(NumberOf(folder));
    if (!owned.IsOpen() || !AskHandle(HandleOf(owned.Number()), &facts)) {
        *failure = LastError();
        return nullptr;
    }
    if (facts.kind != FileKind::Folder) {
        *failure = std::make_error_code(std::errc::not_a_directory);
        return nullptr;
    }
    auto* const list = new (std::nothrow) List;
    if (list == nullptr)
        *failure = std::make_error_code(std::errc::not_enough_memory);
    else
        list->folder = std::move(owned);
    return list;
}

} // namespace

void FolderReader::Closer::operator()(void* folder) const {
    delete static_cast<List*>(folder);
}

FolderReader::FolderReader(const char* path) {
    folder.reset(Opened(OpenAt(path, FILE_LIST_DIRECTORY, 0), &failure));
}

FolderReader::FolderReader(const FolderHandle& handle) {
    folder.reset(Opened(OpenIn(HandleOf(handle.Number()), ".", {.access = FILE_LIST_DIRECTORY}), &failure));
}

bStatus FolderReader::Next(FolderEntry* entry) {
    auto* const list = static_cast<List*>(folder.get());
    while (!failure) {
        const FILE_ID_BOTH_DIR_INFO* const found = list->Take();
        if (found == nullptr && GetLastError() == ERROR_NO_MORE_FILES)
            return bERROR_END;
        if (found == nullptr) {
            failure = LastError();
            break;
        }
        const std::optional<std::string> name =
            Utf8Of({found->FileName, found->FileNameLength / sizeof(wchar_t)});
        if (!name) { // no call could name it again
            failure = std::make_error_code(std::errc::illegal_byte_sequence);
            break;
        }
        if (*name == "." || *name == "..")
            continue;
        list->name = *name;
        *entry = {.name = list->name, .kind = FactsOf(*found).kind};
        return bOK;
    }
    return failure == std::errc::not_enough_memory ? bERROR_MEMORY : bERROR_FILE;
}
