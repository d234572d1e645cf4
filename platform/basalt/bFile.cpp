#include "basalt/bFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bFile::bFile(bAlloc allocator) : bObject(allocator), buffer(allocator) {
}

bFile::~bFile() {
    if (descriptor >= 0)
        close(descriptor);
}

bStatus bFile::OpenToRead(const char* path) {
    // Without blocking, because opening a FIFO that nobody writes would wait for ever.
    descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return errno == ENOENT ? bERROR_NOT_FOUND : bERROR_FILE;
    struct stat state {};
    const bool regular = fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode);
    return regular ? bOK : bERROR_FILE;
}

void bFile::OpenToRead(Source from, std::int64_t size) {
    source = std::move(from);
    sourceSize = size;
}

bStatus bFile::OpenToWrite(const char* path) try {
    output.emplace(path);
    return output->IsOpen() ? bOK : bERROR_FILE;
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
}

bStatus bFile::Read(void* data, std::size_t capacity, std::size_t* count) {
    *count = 0;
    while (*count < capacity) {
        const ssize_t got = read(descriptor, static_cast<char*>(data) + *count, capacity - *count);
        if (got == 0)
            return bOK;
        if (got < 0 && errno != EINTR)
            return bERROR_FILE;
        if (got > 0)
            *count += static_cast<std::size_t>(got);
    }
    return bOK;
}

bStatus bFile::ReadBlock(char* room, std::size_t capacity, std::string_view* block) {
    if (source)
        return source(room, capacity, block);
    std::size_t count = 0;
    const bStatus status = Read(room, capacity, &count);
    *block = {room, count};
    return status;
}

std::int64_t bFile::Skip(std::int64_t size) {
    if (source)
        return 0; // which makes the reader read over what it does not want
    const off_t here = lseek(descriptor, 0, SEEK_CUR);
    Facts facts;
    if (here < 0 || size < 0 || Ask(&facts) != bOK)
        return -1;
    const std::int64_t step = std::clamp<std::int64_t>(facts.size - here, 0, size);
    return lseek(descriptor, step, SEEK_CUR) < 0 ? -1 : step;
}

bStatus bFile::Ask(Facts* facts) const {
    if (source) {
        *facts = {.size = sourceSize};
        return bOK;
    }
    struct stat state {};
    if (descriptor < 0 || fstat(descriptor, &state) != 0)
        return bERROR_FILE;
    *facts = {state.st_size, state.st_mtim.tv_sec, state.st_mtim.tv_nsec, state.st_mode & 0777U};
    return bOK;
}

bStatus bFile::Write(const void* data, std::size_t size) {
    if (!output || !output->IsOpen())
        return bERROR_FILE;
    if (buffer.size() + size > bufferSize)
        FlushBuffer();
    if (size >= bufferSize)
        output->Write(data, size);
    else
        buffer.insert(buffer.end(), static_cast<const char*>(data), static_cast<const char*>(data) + size);
    return output->HasFailed() ? bERROR_FILE : bOK;
}

bStatus bFile::SetWriteBuffer(std::size_t size) try {
    if (!output)
        return bERROR_PARAMETER;
    buffer.reserve(size);
    bufferSize = size;
    return bOK;
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
} catch (const std::length_error&) {
    return bERROR_MEMORY;
}

bStatus bFile::Commit() {
    if (!output)
        return bERROR_FILE;
    FlushBuffer();
    return output->Commit() ? bOK : bERROR_FILE;
}

void bFile::FlushBuffer() {
    output->Write(buffer.data(), buffer.size());
    buffer.clear();
}

int bFile_Exists(const char* path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) ? 1 : 0;
}

bStatus bFile_Delete(const char* path) {
    if (bFile_Exists(path) == 0)
        return bERROR_NOT_FOUND;
    std::error_code failure;
    return std::filesystem::remove(path, failure) ? bOK : bERROR_FILE;
}

std::int64_t bFile_Size(const char* path) {
    struct stat state {};
    if (stat(path, &state) != 0 || !S_ISREG(state.st_mode))
        return -1;
    return state.st_size;
}

bStatus bFile_Construct(bFile** file, const char* path, int mode, bAlloc allocator) {
    if (path == nullptr || (mode != bFile_READ && mode != bFile_WRITE))
        return bERROR_PARAMETER;
    if (const bStatus status = bObject_New(file, allocator); status != bOK)
        return status;
    const bStatus opened = mode == bFile_READ ? (*file)->OpenToRead(path) : (*file)->OpenToWrite(path);
    if (opened != bOK) {
        xbObject_DestroyImpl(*file);
        *file = nullptr;
    }
    return opened;
}

bStatus bFile_ConstructOver(bFile** file, bFile::Source source, std::int64_t size, bAlloc allocator) {
    if (!source || size < 0)
        return bERROR_PARAMETER;
    const bStatus status = bObject_New(file, allocator);
    if (status == bOK)
        (*file)->OpenToRead(std::move(source), size);
    return status;
}

bStatus bFile_SetWriteBuffer(bFile* file, std::size_t size) {
    return file->SetWriteBuffer(size);
}

bStatus bFile_Commit(bFile* file) {
    return file->Commit();
}
