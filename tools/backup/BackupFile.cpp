#include "tools/backup/BackupFile.h"

#include "basalt/Exception.h"
#include "basalt/InputFile.h"
#include "cinder/PackFolder.h"
#include "cinder/UnpackFolder.h"
#include "tools/commandline/Failure.h"

#include <memory>
#include <new>

bOwned<bFile> OpenWithProgress(const std::string& file, Progress& progress) {
    const auto input = std::make_shared<InputFile>(file.c_str());
    FileFacts facts;
    if (!input->IsOpen() || !input->Ask(&facts))
        throw Failure(ExitCode::Unreadable, file + ": " + input->Failure().message());
    const auto source = [input, &progress, done = std::int64_t{0}, total = facts.size](
                            char* buffer, std::size_t capacity, std::string_view* block) mutable {
        std::size_t count = 0;
        if (!input->Read(buffer, capacity, &count))
            return bERROR_FILE;
        *block = {buffer, count};
        progress.Update(done += static_cast<std::int64_t>(count), total);
        return bOK;
    };
    bFile* counted = nullptr;
    if (bFile_ConstructOver(&counted, source, facts.size, bAlloc_Application()) != bOK)
        throw std::bad_alloc();
    return bOwned<bFile>(counted);
}

void UnpackInto(const std::string& archive, const std::string& folder, Progress& progress) {
    const bOwned<bFile> file = OpenWithProgress(archive, progress);
    try {
        UnpackFolderStrictly(file.get(), folder, bAlloc_Application());
    } catch (const Ve::Exception& failure) {
        throw Failure(ExitCode::Unreadable, archive + ": " + failure.what());
    }
}

void PackFrom(const std::string& folder, const std::string& archive) {
    try {
        PackFolder(folder, archive, bAlloc_Application());
    } catch (const Ve::Exception& failure) {
        throw Failure(ExitCode::Unwritable, archive + ": " + failure.what());
    }
}
