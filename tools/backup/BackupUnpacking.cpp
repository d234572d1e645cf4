#include "tools/backup/BackupUnpacking.h"

#include "basalt/Exception.h"
#include "cinder/PackFolder.h"
#include "cinder/UnpackFolder.h"
#include "tools/backup/CountedFile.h"
#include "tools/commandline/Failure.h"

void UnpackInto(const std::string& archive, const std::string& folder, Progress& progress) {
    const bOwned<bFile> file = OpenCounted(archive, progress);
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
