#include "window/TrackFolder.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <memory>

#include <dirent.h>

namespace {

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// A file or a folder, or a link to one.
bool IsFileOrFolder(const dirent& entry, const QString& path) {
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_REG || entry.d_type == DT_DIR;
    const QFileInfo info(path);
    return info.isFile() || info.isDir();
}

bStatus StatusOfErrno() {
    return errno == ENOMEM ? bERROR_MEMORY : bERROR_FILE;
}

/// The names as the toolkit lists them, without hidden ones and those that are no text. It would take a
/// folder that cannot be read for an empty one, and one that can be read in part for a smaller one.
bStatus ReadNames(const QString& directory, const QString& pattern, QStringList& names) {
    const std::unique_ptr<DIR, FolderCloser> folder(opendir(QFile::encodeName(directory).constData()));
    if (!folder)
        return StatusOfErrno();
    errno = 0; // nothing else tells the end from a failure
    while (const dirent* const entry = readdir(folder.get())) {
        const QString name = QFile::decodeName(entry->d_name);
        const bool shown = QFile::encodeName(name) == entry->d_name && !name.startsWith(QLatin1Char('.'));
        if (shown && QDir::match(pattern, name) &&
            IsFileOrFolder(*entry, directory + QLatin1Char('/') + name))
            names.append(name);
        errno = 0;
    }
    return errno == 0 ? bOK : StatusOfErrno();
}

bool ComesBefore(const QString& one, const QString& other) {
    const int order = one.toLower().compare(other.toLower());
    return order != 0 ? order < 0 : one < other;
}

} // namespace

QStringList ListFiles(const QString& directory, const QString& pattern) {
    QStringList names;
    if (!QFileInfo(directory).isDir())
        return names;
    if (const bStatus status = ReadNames(directory, pattern, names); status != bOK)
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
