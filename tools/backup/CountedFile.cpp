#include "tools/backup/CountedFile.h"

#include "tools/commandline/Failure.h"

#include <memory>
#include <new>

bOwned<bFile> OpenCounted(const std::string& file, Progress& progress) {
    const auto input = std::make_shared<InputFile>(file.c_str());
    FileFacts facts;
    if (!input->IsOpen() || !input->Ask(&facts))
        throw Failure(ExitCode::Unreadable, file + ": " + input->Failure().message());
    const auto source = [input, &progress, done = std::int64_t{0}, total = facts.size](
                            char* room, std::size_t capacity, std::string_view* block) mutable {
        std::size_t count = 0;
        if (!input->Read(room, capacity, &count))
            return bERROR_FILE;
        *block = {room, count};
        progress.Update(done += static_cast<std::int64_t>(count), total);
        return bOK;
    };
    bFile* counted = nullptr;
    if (bFile_ConstructOver(&counted, source, facts.size, bAlloc_Application()) != bOK)
        throw std::bad_alloc();
    return bOwned<bFile>(counted);
}
