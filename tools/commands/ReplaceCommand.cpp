#include "tools/commands/Commands.h"

#include "basalt/AtomicFile.h"
#include "basalt/FilePath.h"
#include "basalt/bDirectory.h"
#include "tools/backup/BackupFile.h"
#include "tools/backup/BackupWalk.h"
#include "tools/track/LoadedTrack.h"
#include "tools/track/TrackCheck.h"

#include <QTemporaryDir>

namespace {

/// @throws Failure when the editor could not open the track
void RequireGoodTrack(const std::string& file) {
    CheckTrack(file, [&](const TrackProblem& problem) {
        if (problem.severity == TrackProblem::Severity::Error)
            throw Failure(ExitCode::Unreadable,
                          file + ": " + problem.text + "; see \"corvane-track check\", or use --force");
    });
}

/// Replaces or adds a file in an unpacked workspace.
void PutInto(const std::string& workspace, const std::string& name, const std::string& file, bool add) {
    const std::string target = workspace + "/" + name;
    FileFacts facts;
    if (!add && (AskPathItself(target, &facts) || facts.kind != FileKind::File))
        throw Failure(ExitCode::Unreadable, "no " + name + " in the workspace; --add puts a new file there");
    if (bDirectory_Exists(target.c_str()) != 0)
        throw Failure(ExitCode::Unreadable, name + " is a folder in the workspace");
    const std::string above = FolderOf(target);
    const std::error_code failure = MakeFoldersAt(above);
    if (failure && failure != std::errc::file_exists)
        throw Failure(ExitCode::Unwritable, above + ": " + failure.message());
    if (const std::error_code reason = CopyAtomically(file, target))
        throw Failure(ExitCode::Unwritable, "copying " + file + " into the workspace: " + reason.message());
}

} // namespace

CommandText ReplaceCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("replace");
    text.summary = QStringLiteral("Put a file into the workspace in a backup");
    text.arguments = QStringLiteral("BACKUP NAME FILE");
    text.min = text.max = 3;
    text.details = QStringLiteral(
        "NAME is that of the file in the workspace, as \"list\" shows it; one without a slash is a track\n"
        "in vdk/ContourPath. The backup is packed again, as the editor does, and replaced atomically. It\n"
        "is unpacked beside it meanwhile, so the disk needs space for three copies.\n");
    text.options = {
        OutputOption(QStringLiteral("write the new backup to FILE, and leave BACKUP as it is")),
        Switch(QStringLiteral("add"), QStringLiteral("accept a NAME that is not in the workspace")),
        Switch(QStringLiteral("force"), QStringLiteral("accept a .trk that the editor cannot open"))};
    return text;
}

ExitCode ReplaceCommand::Run(const Arguments& arguments) const {
    const std::string& backup = arguments.Words()[0];
    const std::string name = WorkspaceName(arguments.Words()[1]);
    const std::string& file = arguments.Words()[2];
    const std::string target = arguments.Text("output").value_or(backup);

    RequireFile(file);
    if (name.ends_with(".trk") && !arguments.Has("force"))
        RequireGoodTrack(file);
    const QTemporaryDir scratch(QString::fromStdString(target) + QStringLiteral("-XXXXXX"));
    if (!scratch.isValid())
        throw Failure(ExitCode::Unwritable, target + ": " + scratch.errorString().toStdString());
    const std::string outer = scratch.filePath(QStringLiteral("backup")).toStdString();
    const std::string workspace = scratch.filePath(QStringLiteral("workspace")).toStdString();
    const std::string archive = outer + "/" + kWorkspaceArchive;

    Progress progress("Reading " + backup);
    UnpackInto(backup, outer, progress);
    progress.Begin("Unpacking the workspace");
    UnpackInto(archive, workspace, progress);
    PutInto(workspace, name, file, arguments.Has("add"));
    progress.Begin("Packing the workspace");
    PackFrom(workspace, archive);
    progress.Begin("Packing " + target);
    PackFrom(outer, target);
    return ExitCode::Done;
}
