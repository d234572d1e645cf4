#include "basalt/bFile.h"

#include "basalt/FilePath.h"

#include <stdexcept>

bStatus bFile::OpenToRead(const char* path) {
    input = InputFile(path);
    if (input.IsOpen())
        return bOK;
    return input.Failure() == std::errc::no_such_file_or_directory ? bERROR_NOT_FOUND : bERROR_FILE;
}

void bFile::OpenToRead(Source from, std::int64_t size) {
    source = std::move(from);
    sourceSize = size;
}

bStatus bFile::OpenToWrite(const char* path) try {
    output.emplace(path, 0, Allocator());
    return output->IsOpen() ? bOK : bERROR_FILE;
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
}

bStatus bFile::Read(void* data, std::size_t capacity, std::size_t* count) {
    return input.Read(data, capacity, count) ? bOK : bERROR_FILE;
}

bStatus bFile::ReadBlock(char* buffer, std::size_t capacity, std::string_view* block) {
    if (source)
        return source(buffer, capacity, block);
    std::size_t count = 0;
    const bStatus status = Read(buffer, capacity, &count);
    *block = {buffer, count};
    return status;
}

std::int64_t bFile::Skip(std::int64_t size) {
    return source ? 0 : input.Skip(size); // 0 makes the reader read what it skips
}

bStatus bFile::Ask(FileFacts* facts) {
    if (source) {
        *facts = {.size = sourceSize};
        return bOK;
    }
    return input.Ask(facts) ? bOK : bERROR_FILE;
}

bStatus bFile::Write(const void* data, std::size_t size) {
    if (sink)
        return sink(data, size);
    if (!output || !output->IsOpen())
        return bERROR_FILE;
    output->Write(data, size);
    return output->HasFailed() ? bERROR_FILE : bOK;
}

bStatus bFile::SetWriteBuffer(std::size_t size) try {
    if (!output)
        return bERROR_PARAMETER;
    output->SetBufferSize(size);
    return bOK;
} catch (const std::bad_alloc&) {
    return bERROR_MEMORY;
} catch (const std::length_error&) {
    return bERROR_MEMORY;
}

bStatus bFile::Commit() {
    return output && output->Commit() ? bOK : bERROR_FILE;
}

int bFile_Exists(const char* path) {
    FileFacts facts;
    return !AskPath(path, &facts) && facts.kind == FileKind::File ? 1 : 0;
}

bStatus bFile_Delete(const char* path) {
    if (bFile_Exists(path) == 0)
        return bERROR_NOT_FOUND;
    return RemoveFileAt(path) ? bERROR_FILE : bOK;
}

std::int64_t bFile_Size(const char* path) {
    FileFacts facts;
    return !AskPath(path, &facts) && facts.kind == FileKind::File ? facts.size : -1;
}

bStatus bFile_Construct(bFile** file, const char* path, int mode, bAlloc allocator, std::error_code* why) {
    if (path == nullptr || (mode != bFile_READ && mode != bFile_WRITE))
        return bERROR_PARAMETER;
    if (const bStatus status = bObject_New(file, allocator); status != bOK)
        return status;
    const bStatus opened = mode == bFile_READ ? (*file)->OpenToRead(path) : (*file)->OpenToWrite(path);
    if (opened != bOK) {
        if (why != nullptr)
            *why = (*file)->Failure();
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

bStatus bFile_ConstructInto(bFile** file, bFile::Sink sink, bAlloc allocator) {
    if (!sink)
        return bERROR_PARAMETER;
    const bStatus status = bObject_New(file, allocator);
    if (status == bOK)
        (*file)->OpenToWrite(std::move(sink));
    return status;
}

bStatus bFile_SetWriteBuffer(bFile* file, std::size_t size) {
    return file->SetWriteBuffer(size);
}

bStatus bFile_Commit(bFile* file) {
    return file->Commit();
}
