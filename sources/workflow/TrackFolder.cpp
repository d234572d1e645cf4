#include "workflow/TrackFolder.h"

#include "basalt/Exception.h"
#include "basalt/FolderReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// A file or a folder, or a link to one.
bool IsFileOrFolder(const FolderEntry& entry, const QString& path) {
    if (entry.kind != FileKind::Link)
        return entry.kind != FileKind::Other;
    const QFileInfo info(path);
    return info.isFile() || info.isDir();
}

/// The names as Qt lists them, without hidden ones and those that are no text. It would mistake a folder that
/// cannot be read for an empty one, and one that can be read in part for a smaller one.
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
