#include "workflow/WorkingFiles.h"

#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "link/FileUtils.h"
#include "log/Log.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

void LogLeftover(const char* path, bStatus status) {
    if (status == bOK)
        return;
    LOG_LINE(ERROR) << "(" << bStatus_Name(status) << ") Failed to delete " << path;
}

} // namespace

LeftOut UnpackBackup(const std::string& backup) {
    return TarUncompressReporting(backup, kBackupFolder, bAlloc_Application());
}

bool HasWorkspace() {
    return bFile_Exists(kWorkspaceArchive) != 0;
}

LeftOut UnpackWorkspace() {
    return TarUncompressReporting(kWorkspaceArchive, kWorkspaceFolder, bAlloc_Application());
}

bool IsServerBackup(const std::string& file) {
    std::error_code failure;
    return fs::equivalent(file, kServerBackup, failure);
}

bool IsInWorkingFolder(const std::string& file) {
    std::error_code failure;
    for (fs::path folder = fs::canonical(file, failure).parent_path(); folder.has_relative_path();
         folder = folder.parent_path())
        if (fs::equivalent(folder, kBackupFolder, failure) ||
            fs::equivalent(folder, kWorkspaceFolder, failure))
            return true;
    return false;
}

void PackBackup(const std::string& backup) {
    TarCompress(kWorkspaceFolder, kWorkspaceArchive, bAlloc_Application());
    TarCompress(kBackupFolder, backup, bAlloc_Application());
}

void RemoveWorkingFiles() {
    for (const char* folder : {kBackupFolder, kWorkspaceFolder})
        if (bDirectory_Exists(folder) != 0)
            LogLeftover(folder, bDirectory_Delete(folder));
    if (bFile_Exists(kServerBackup) != 0)
        LogLeftover(kServerBackup, bFile_Delete(kServerBackup));
}
