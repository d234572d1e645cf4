#include "workflow/WorkingFiles.h"

#include "basalt/Exception.h"
#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"
#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "link/FileUtils.h"
#include "log/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

void LogLeftover(const char* path, bStatus status) {
    if (status == bOK)
        return;
    LOG_LINE(ERROR) << "(" << bStatus_Name(status) << ") Failed to delete " << path;
}

/// A file or a folder, or a link to one.
bool IsFileOrFolder(const FolderEntry& entry, const QString& path) {
    if (entry.kind != FileKind::Link)
        return entry.kind != FileKind::Other;
    const QFileInfo info(path);
    return info.isFile() || info.isDir();
}

/// The names as Qt lists them, without hidden ones and those that are not valid text. Not read with Qt, which
/// would treat an unreadable folder as empty, and a partly readable one as smaller.
bStatus ReadNames(const QString& directory, const QString& pattern, QStringList& names) {
    FolderReader folder(QFile::encodeName(directory).constData());
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = folder.Next(&entry)) == bOK) {
        const QByteArray bytes(entry.name.data(), static_cast<int>(entry.name.size()));
        const QString name = QFile::decodeName(bytes);
        const bool shown = QFile::encodeName(name) == bytes && !name.startsWith(QLatin1Char('.'));
        if (shown && QDir::match(pattern, name) && IsFileOrFolder(entry, directory + QLatin1Char('/') + name))
            names.append(name);
    }
    return status;
}

bool ComesBefore(const QString& one, const QString& other) {
    const int order = one.toLower().compare(other.toLower());
    return order != 0 ? order < 0 : one < other;
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

QStringList ListFiles(const QString& directory, const QString& pattern) {
    QStringList names;
    if (!QFileInfo(directory).isDir())
        return names;
    if (const bStatus status = ReadNames(directory, pattern, names); status != bERROR_END)
        throw Ve::Exception(__LINE__, "TrackFolder", status, "ListFiles", "Failed to list files in %s",
                            directory.toStdString().c_str());
    std::sort(names.begin(), names.end(), ComesBefore);
    return names;
}

QString WorkspaceTrack(const QString& name) {
    return kTrackFolder + QLatin1Char('/') + name;
}

QString FileNameOf(const QString& path) {
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString NewTrackName(const QString& name) {
    return name.left(name.lastIndexOf(QLatin1Char('.'))) + QStringLiteral("-New.trk");
}
