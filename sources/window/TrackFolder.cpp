#include "TrackFolder.h"

#include "Exception.h"
#include "bDirectory.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <algorithm>

namespace {

constexpr std::size_t kListCapacity = 10;

/// The regular files of a folder, other than hidden ones; the toolkit leaves out names that are no text.
bStatus AskNames(const QString& directory, QStringList& names) {
    bArrayList* list = nullptr;
    bStatus status = bArrayList_Construct(&list, bString_TYPE, kListCapacity, bAlloc_Application());
    const bOwned<bArrayList> owned(list);
    if (status == bOK)
        status = bDirectory_ListFiles(QFile::encodeName(directory).constData(), list);
    if (status != bOK)
        return status;
    for (const bString& name : list->Items()) {
        const QByteArray bytes(name.data(), static_cast<int>(name.size()));
        const QString text = QFile::decodeName(bytes);
        if (QFile::encodeName(text) == bytes && !text.startsWith(QLatin1Char('.')))
            names.append(text);
    }
    return bOK;
}

/// The toolkit takes a folder that cannot be read for an empty one, and one that can be read in part for a
/// smaller one.
bStatus CheckListed(const QStringList& listed, const QString& directory, const QString& pattern) {
    QStringList names;
    if (const bStatus status = AskNames(directory, names); status != bOK)
        return status;
    const QSet<QString> known(listed.begin(), listed.end());
    const bool whole = std::all_of(names.begin(), names.end(), [&](const QString& name) {
        return !QDir::match(pattern, name) || known.contains(name);
    });
    return whole ? bOK : bERROR_FILE;
}

} // namespace

QStringList ListFiles(const QString& directory, const QString& pattern) {
    const QDir folder(directory);
    if (!folder.exists())
        return {};
    QStringList listed = folder.entryList({pattern});
    if (const bStatus status = CheckListed(listed, directory, pattern); status != bOK)
        throw Ve::Exception(__LINE__, "TrackFolder", status, "ListFiles", "Failed to list files in %s",
                            directory.toStdString().c_str());
    return listed;
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
