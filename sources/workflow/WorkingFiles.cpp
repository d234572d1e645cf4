#include "workflow/WorkingFiles.h"

#include "basalt/FilePath.h"
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
    return LeadToTheSame(file, kServerBackup);
}

bool IsInWorkingFolder(const std::string& file) {
    const std::string place = RealPath(file);
    if (place.empty())
        return false;
    std::string below = place;
    for (std::string folder = FolderOf(place); folder != below;
         below = std::exchange(folder, FolderOf(folder)))
        if (LeadToTheSame(folder, kBackupFolder) || LeadToTheSame(folder, kWorkspaceFolder))
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
