#include "workflow/TrackOperations.h"

#include "basalt/AtomicFile.h"
#include "basalt/Exception.h"
#include "basalt/FilePath.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "document/formats/Converter.h"
#include "workflow/TrackView.h"
#include "workflow/WaitCursor.h"
#include "workflow/WorkProtection.h"
#include "workflow/WorkingFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <utility>

namespace {

// The line numbers that failures are reported with. They are known from existing reports, and stay when the
// code around them moves.
constexpr const char* kTrackFailureFile = "mainwindow";
constexpr int kInfoFailureLine = 489;
constexpr int kHeightMapFailureLine = 495;
constexpr int kPathFailureLine = 513;
constexpr int kDeleteFailureLine = 758;

// Reading a text track's information replaces these by its lowest and highest height.
constexpr double kMinHeightStart = 32768.0;
constexpr double kMaxHeightStart = -32768.0;

const QString kTemporaryTrack = QStringLiteral("temp.trk");

Ve::Exception LoadFailure(int line, const char* message) {
    return {line, kTrackFailureFile, bERROR_TRACK, "MainWindow::LoadTrack", "%s", message};
}

/// Whether two paths lead to one existing file.
bool IsSameFile(const QString& one, const QString& other) {
    return LeadToTheSame(one.toStdString(), other.toStdString());
}

bool IsTemporaryTrack(const QString& path) {
    return QFileInfo(path).canonicalFilePath() == QFileInfo(kTemporaryTrack).canonicalFilePath();
}

} // namespace

TrackOperations::TrackOperations(Context context)
    : document(context.document),
      view(context.view),
      protection(context.protection),
      sourceIsOpen(std::move(context.sourceIsOpen)) {
}

void TrackOperations::RefreshTrackList() {
    if (!sourceIsOpen()) {
        view.showTrackList({});
        return;
    }
    trackFiles = ListFiles(kTrackFolder, QStringLiteral("*.trk")); // first, since it may fail
    view.showTrackList(trackFiles);
}

bool TrackOperations::Load() {
    const bool external = view.isExternalChosen();
    const QString path = external ? view.askForTrack() : WorkspaceTrack(view.chosenTrack());
    if (path.isEmpty())
        return false;
    try {
        LoadTrack(path, external ? TrackOrigin::External : TrackOrigin::Workspace);
    } catch (const Ve::Exception&) {
        document.detach();
        throw;
    }
    view.showFileName(FileNameOf(path), external);
    return true;
}

void TrackOperations::LoadTrack(const QString& path, TrackOrigin origin) {
    const WaitCursor waiting;
    protection.KeepUnsaved();
    const std::string file = path.toStdString();
    const std::shared_ptr<Converter> converter = CreateConverter(file);
    TrackContent content;
    content.info.minHeight = kMinHeightStart;
    content.info.maxHeight = kMaxHeightStart;
    if (converter->ReadInfo(file, content.info) != 0)
        throw LoadFailure(kInfoFailureLine, "Failed to read basic information.");
    const double lowest = content.info.minHeight;
    const double highest = content.info.maxHeight;
    view.showHeights(lowest, highest);
    const int failure = converter->ReadImage(file, content.info, lowest, highest, content.image);
    if (failure != 0 || content.image.isNull())
        throw LoadFailure(kHeightMapFailureLine, "Failed to read height map.");
    content.isComplete = CreateConverter(file)->ReadPath(file, content.paths) == 0;
    document.open(std::move(content), file, origin);
    view.showTrack();
    if (!document.isOpen())
        throw LoadFailure(kPathFailureLine, "Failed to read path information.");
    view.showPaths();
}

bool TrackOperations::HasTrackToSave() {
    if (!document.isOpen())
        view.showNothingToSave();
    return document.isOpen();
}

bool TrackOperations::Save() {
    if (!HasTrackToSave())
        return false;
    view.refreshRuler();
    const QString path = QString::fromStdString(document.file());
    if (document.isExternal())
        SaveExternalTrack(path);
    else
        SaveIntoWorkspace(path, FileNameOf(path));
    document.setSaved();
    return true;
}

/// An external track joins the workspace; its own file is never written.
void TrackOperations::SaveExternalTrack(const QString& path) {
    const QString name = NameInWorkspace(path);
    const QString target = WorkspaceTrack(name);
    protection.KeepReplaced(target.toStdString());
    SaveIntoWorkspace(path, name);
    document.moveToWorkspace(target.toStdString());
    view.showFileName(name, false);
    RefreshTrackList();
    view.chooseTrack(name);
}

/// A name that is taken, or that of the external file itself, gets another ending.
QString TrackOperations::NameInWorkspace(const QString& externalPath) const {
    QString name = FileNameOf(externalPath);
    if (trackFiles.contains(name))
        name = NewTrackName(name);
    while (IsSameFile(WorkspaceTrack(name), externalPath))
        name = NewTrackName(name);
    return name;
}

/// The track counts as not sent before its file changes, so that a crash in between loses nothing.
void TrackOperations::SaveIntoWorkspace(const QString& source, const QString& name) {
    const std::string recorded = name.toStdString();
    const bool wasUnsent = protection.Unsent().Names().count(recorded) > 0;
    protection.Unsent().Record(recorded);
    try {
        SaveTrack(source, WorkspaceTrack(name));
    } catch (const Ve::Exception&) {
        if (!wasUnsent)
            protection.Unsent().Forget(recorded);
        throw;
    }
}

/// The window keeps editing the file that it has open.
bool TrackOperations::SaveAs() {
    if (!HasTrackToSave())
        return false;
    const QString target = view.askForCopyName();
    if (!target.isEmpty()) {
        view.refreshRuler();
        SaveTrack(QString::fromStdString(document.file()), target);
    }
    return true;
}

void TrackOperations::SaveTrack(const QString& source, const QString& target) {
    const WaitCursor waiting;
    if (source == target && !IsTemporaryTrack(source))
        return SaveInPlace(source);
    protection.KeepTextOriginal(target.toStdString());
    document.save(source.toStdString(), target.toStdString(), document.worldTransform());
}

/// Through a temporary track; the old file is removed only when that one is complete.
void TrackOperations::SaveInPlace(const QString& track) {
    const auto cleanUp = [] { QFile::remove(kTemporaryTrack); };
    cleanUp();
    const auto atTheEnd = qScopeGuard(cleanUp);
    document.save(track.toStdString(), kTemporaryTrack.toStdString(), document.worldTransform());
    protection.KeepTextOriginal(track.toStdString());
    if (ReplaceAtomically(kTemporaryTrack.toStdString(), track.toStdString()))
        throw Ve::Exception(__LINE__, kTrackFailureFile, bERROR_TRACK, "MainWindow::SaveTrack",
                            "Failed to read the target file.");
}

bool TrackOperations::Delete() {
    const int chosen = view.chosenTrackIndex();
    const std::string path = WorkspaceTrack(trackFiles.value(chosen)).toStdString();
    protection.KeepDeleted(path);
    const bStatus status = bFile_Delete(path.c_str());
    if (status != bOK)
        throw Ve::Exception(kDeleteFailureLine, kTrackFailureFile, status,
                            "MainWindow::on_comboBox_operation_currentIndexChanged", "Failed to delete %s",
                            path.c_str());
    protection.Unsent().Forget(trackFiles.value(chosen).toStdString());
    view.removeFromTrackList(chosen);
    trackFiles.removeAt(chosen);
    return true;
}

void TrackOperations::CloseTrack() {
    protection.KeepUnsaved();
    document.close();
    view.showNoTrack();
    view.showFileName({}, false);
    view.showHeights(0.0, 0.0);
}

void TrackOperations::CloseWorkspaceTrack() {
    if (document.isWorkspaceTrack())
        CloseTrack();
}

void TrackOperations::KeepUnsavedOfWorkspace() {
    if (document.isWorkspaceTrack())
        protection.KeepUnsaved();
}
