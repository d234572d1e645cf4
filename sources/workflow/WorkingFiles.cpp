#include "workflow/WorkingFiles.h"

#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "link/FileUtils.h"
#include "log/Log.h"

namespace {

void LogLeftover(const char* path, bStatus status) {
    if (status == bOK)
        return;
    LOG_LINE(ERROR) << "(" << bStatus_Name(status) << ") Failed to delete " << path;
}

} // namespace

void UnpackBackup(const std::string& backup) {
    TarUncompress(backup, kBackupFolder, bAlloc_Application());
    TarUncompress(kWorkspaceArchive, kWorkspaceFolder, bAlloc_Application());
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
