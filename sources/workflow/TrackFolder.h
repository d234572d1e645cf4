#pragma once

#include <QString>
#include <QStringList>

/// The folder of the unpacked workspace that holds its tracks, relative to the working directory.
inline const QString kTrackFolder = QStringLiteral("./TmpDirOsws/vdk/ContourPath");

/// The names in `directory` that match the pattern, by name and ignoring case; none when there is no such
/// directory. @throws Ve::Exception when it cannot be read
QStringList ListFiles(const QString& directory, const QString& pattern);

/// The path of a track of the workspace.
QString WorkspaceTrack(const QString& name);

/// What stands after the last "/" of a path.
QString FileNameOf(const QString& path);

/// The name under which a track joins a workspace that has one of its name already: what follows the last dot
/// is replaced, "-New.trk" is put in its place; a name without a dot gets it appended.
QString NewTrackName(const QString& name);
