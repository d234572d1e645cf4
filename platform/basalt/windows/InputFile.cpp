#include "basalt/InputFile.h"

#include "basalt/windows/SystemError.h"
#include "basalt/windows/SystemFile.h"

#include <algorithm>

InputFile::InputFile(const char* path) : InputFile(NumberOf(OpenAt(path, GENERIC_READ, 0))) {
}

InputFile::InputFile(const FolderHandle& folder, const std::string& name)
    : InputFile(NumberOf(OpenIn(HandleOf(folder.Number()), name, {.access = FILE_READ_DATA}))) {
}

InputFile::InputFile(int opened) : file(opened) {
    FileFacts facts;
    if (!IsOpen()) {
        failure = LastError();
    } else if (!Ask(&facts)) {
        file = FileDescriptor();
    } else if (facts.kind != FileKind::File) {
        file = FileDescriptor();
        failure =
            std::make_error_code(facts.kind == FileKind::Folder ? std::errc::is_a_directory
                                 : facts.kind == FileKind::Link ? std::errc::too_many_symbolic_link_levels
                                                                : std::errc::not_supported);
    }
}

bool InputFile::Read(void* data, std::size_t capacity, std::size_t* count) {
    constexpr std::size_t kMaxAtOnce = std::size_t{1} << 30U;
    *count = 0;
    while (*count < capacity) {
        DWORD got = 0;
        const auto wanted = static_cast<DWORD>(std::min(capacity - *count, kMaxAtOnce));
        if (ReadFile(HandleOf(file.Number()), static_cast<char*>(data) + *count, wanted, &got, nullptr) ==
            FALSE) {
            failure = LastError();
            return false;
        }
        if (got == 0)
            return true;
        *count += got;
    }
    return true;
}

bool InputFile::MoveTo(std::int64_t byte) {
    LARGE_INTEGER place{};
    place.QuadPart = byte;
    if (SetFilePointerEx(HandleOf(file.Number()), place, nullptr, FILE_BEGIN) != FALSE)
        return true;
    failure = LastError();
    return false;
}

std::int64_t InputFile::Skip(std::int64_t size) {
    LARGE_INTEGER here{};
    FileFacts facts;
    if (SetFilePointerEx(HandleOf(file.Number()), {}, &here, FILE_CURRENT) == FALSE || size < 0 ||
        !Ask(&facts))
        return -1;
    LARGE_INTEGER step{};
    step.QuadPart = std::clamp<std::int64_t>(facts.size - here.QuadPart, 0, size);
    return SetFilePointerEx(HandleOf(file.Number()), step, nullptr, FILE_CURRENT) == FALSE ? -1
                                                                                           : step.QuadPart;
}

bool InputFile::Ask(FileFacts* facts) {
    if (!AskHandle(HandleOf(file.Number()), facts)) {
        failure = LastError();
        return false;
    }
    failure.clear();
    return true;
}
