#include "start/OwnFolder.h"

#include <QDir>
#include <QTemporaryFile>

namespace {

/// A full disk and a file system that is read-only are seen only by writing.
bool CanWriteInto(const QDir& folder) {
    QTemporaryFile file(folder.filePath(QStringLiteral(".corvane-XXXXXX")));
    return file.open() && file.write("x") == 1 && file.flush();
}

} // namespace

QString EnterOwnFolder() {
    const QDir folder(QDir::home().filePath(QStringLiteral("Corvane")));
    const QString name = QDir::toNativeSeparators(folder.path());
    if (!folder.mkpath(QStringLiteral(".")))
        return QStringLiteral("The folder %1 cannot be made.").arg(name);
    if (!CanWriteInto(folder))
        return QStringLiteral("The folder %1 cannot be written to.").arg(name);
    if (!QDir::setCurrent(folder.path()))
        return QStringLiteral("The folder %1 cannot be entered.").arg(name);
    return {};
}
