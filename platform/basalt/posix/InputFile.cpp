#include "basalt/InputFile.h"

#include "basalt/posix/FileState.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Non-blocking, because opening a FIFO without a writer would wait for ever.
constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

} // namespace

InputFile::InputFile(const char* path) : InputFile(open(path, kFlags)) {
}

InputFile::InputFile(const FolderHandle& folder, const std::string& name)
    : InputFile(openat(folder.Number(), name.c_str(), kFlags | O_NOFOLLOW)) {
}

InputFile::InputFile(int opened) : file(opened) {
    FileFacts facts;
    if (!IsOpen()) {
        failure = LastError();
    } else if (!Ask(&facts)) {
        file = FileDescriptor();
    } else if (facts.kind != FileKind::File) {
        file = FileDescriptor();
        failure = std::make_error_code(facts.kind == FileKind::Folder ? std::errc::is_a_directory
                                                                      : std::errc::not_supported);
    }
}

bool InputFile::Read(void* data, std::size_t capacity, std::size_t* count) {
    *count = 0;
    while (*count < capacity) {
        const ssize_t got = read(file.Number(), static_cast<char*>(data) + *count, capacity - *count);
        if (got == 0)
            return true;
        if (got > 0) {
            *count += static_cast<std::size_t>(got);
        } else if (errno != EINTR) {
            failure = LastError();
            return false;
        }
    }
    return true;
}

bool InputFile::MoveTo(std::int64_t byte) {
    if (lseek(file.Number(), byte, SEEK_SET) == byte)
        return true;
    failure = LastError();
    return false;
}

std::int64_t InputFile::Skip(std::int64_t size) {
    const off_t here = lseek(file.Number(), 0, SEEK_CUR);
    FileFacts facts;
    if (here < 0 || size < 0 || !Ask(&facts))
        return -1;
    const std::int64_t step = std::clamp<std::int64_t>(facts.size - here, 0, size);
    return lseek(file.Number(), step, SEEK_CUR) < 0 ? -1 : step;
}

bool InputFile::Ask(FileFacts* facts) {
    struct stat state {};
    if (fstat(file.Number(), &state) != 0) {
        failure = LastError();
        return false;
    }
    *facts = FactsOf(state);
    failure.clear();
    return true;
}
