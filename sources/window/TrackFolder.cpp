#include "TrackFolder.h"

#include <QDir>

QStringList ListFiles(const QString& directory, const QString& pattern) {
    const QDir folder(directory);
    return folder.exists() ? folder.entryList({pattern}) : QStringList();
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
