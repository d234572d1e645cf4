#include "basalt/MemoryStream.h"

#include <windows.h>

/// The library's own temporary files are in the root folder of the drive, where not everybody may make them.
/// This one goes with its last handle, and is written to the disk only when memory is short.
MemoryStream::MemoryStream() {
    wchar_t folder[MAX_PATH + 1];
    wchar_t name[MAX_PATH + 1];
    if (GetTempPathW(MAX_PATH, folder) != 0 && GetTempFileNameW(folder, L"cor", 0, name) != 0)
        file = _wfopen(name, L"w+bTDN");
}

MemoryStream::~MemoryStream() {
    if (file != nullptr)
        std::fclose(file);
}

std::string MemoryStream::Text() const {
    if (file == nullptr)
        return {};
    const long end = std::ftell(file);
    std::string written(static_cast<std::size_t>(end), '\0');
    std::rewind(file);
    written.resize(std::fread(written.data(), 1, written.size(), file));
    std::fseek(file, end, SEEK_SET);
    return written;
}
