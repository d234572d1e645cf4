#include "tools/backup/BackupCheck.h"

#include "cinder/TarName.h"
#include "tools/backup/BackupFile.h"
#include "tools/backup/BackupWalk.h"
#include "tools/commandline/Failure.h"

#include <QDir>
#include <QTemporaryDir>

#include <set>

namespace {

using Sink = std::function<void(const BackupProblem& problem)>;

/// The errors reported of one track; "check" on the extracted track reports all of them.
constexpr std::int64_t kMaxErrors = 20;

class Check {
  public:
    Check(const std::string& backup, Progress& progress, const Sink& sink)
        : backup(backup), progress(progress), sink(sink) {
        if (!scratch.isValid())
            throw Failure(ExitCode::Unwritable, scratch.errorString().toStdString());
    }

    BackupCounts Run() {
        CheckEntries();
        if (isReadable)
            CheckUnpacking();
        return counts;
    }

  private:
    void CheckEntries() {
        const bOwned<bFile> archive = OpenWithProgress(backup, progress);
        try {
            const std::int64_t skipped = WalkBackup(
                archive.get(), [this](const BackupEntry& entry, const EntryContent&) { CheckEntry(entry); });
            if (skipped > 0)
                Report("", std::to_string(skipped) + " links or special files, which are not unpacked");
            isReadable = names.count({false, kWorkspaceArchive}) > 0;
            if (!isReadable)
                Report("", "no " + std::string(kWorkspaceArchive));
        } catch (const BackupDamage& damage) {
            Report("", damage.what());
        }
    }

    void CheckEntry(const BackupEntry& entry) {
        counts.files += entry.isInWorkspace && !entry.isFolder ? 1 : 0;
        const std::string shown = PrintableTarName(entry.name);
        if (!entry.isSafe)
            Report(shown, "a name that leads out of the folder it is unpacked into");
        else if (!names.emplace(entry.isInWorkspace, entry.name).second && !entry.isFolder)
            Report(shown, "more than one file with this name");
    }

    /// Unpacks the backup, which finds whatever the checks of the entries do not cover.
    void CheckUnpacking() {
        const std::string outer = InScratch("backup");
        const std::string inner = InScratch("workspace");
        try {
            progress.Begin("Unpacking " + backup);
            UnpackInto(backup, outer, progress);
            UnpackInto(outer + "/" + kWorkspaceArchive, inner, progress);
        } catch (const Failure& failure) {
            if (!hasProblem)
                Report("", WithoutScratch(failure.what()));
        }
        CheckTracks(inner);
    }

    void CheckTracks(const std::string& workspace) {
        const QDir folder(QString::fromStdString(workspace + "/" + kTrackFolder));
        if (!folder.exists() && !hasProblem)
            Report("", "no " + std::string(kTrackFolder) + " in the workspace");
        const QStringList tracks =
            folder.entryList({QStringLiteral("*.trk")}, QDir::Files | QDir::Hidden, QDir::Name);
        for (const QString& track : tracks) {
            progress.Begin("Checking " + track.toStdString());
            CheckTrackFile(folder.filePath(track).toStdString(),
                           std::string(kTrackFolder) + "/" + track.toStdString());
        }
        counts.tracks = tracks.size();
    }

    void CheckTrackFile(const std::string& file, const std::string& entry) {
        std::int64_t errors = 0;
        CheckTrack(file, [&](const TrackProblem& problem) {
            if (problem.severity == TrackProblem::Severity::Error && ++errors <= kMaxErrors)
                sink({entry, problem});
        });
        if (errors > kMaxErrors)
            Report(entry, "and " + std::to_string(errors - kMaxErrors) + " more errors");
    }

    [[nodiscard]] std::string InScratch(const char* name) const {
        return scratch.filePath(QLatin1String(name)).toStdString();
    }

    /// The message without the name of the backup and of the temporary folder.
    [[nodiscard]] std::string WithoutScratch(std::string text) const {
        for (const std::string& prefix :
             {backup + ": ", InScratch("workspace") + "/", InScratch("backup") + "/"})
            for (std::size_t at = 0; (at = text.find(prefix, at)) != std::string::npos;)
                text.erase(at, prefix.size());
        return text;
    }

    void Report(const std::string& entry, const std::string& text) {
        hasProblem = true;
        sink({entry, {TrackProblem::Severity::Error, {}, {}, text}});
    }

    const std::string& backup;
    Progress& progress;
    const Sink& sink;
    QTemporaryDir scratch;
    BackupCounts counts;
    std::set<std::pair<bool, std::string>> names; ///< and whether each is in the workspace
    bool isReadable = false;                      ///< to its end, with a workspace
    bool hasProblem = false;
};

} // namespace

BackupCounts CheckBackup(const std::string& backup, Progress& progress, const Sink& sink) {
    return Check(backup, progress, sink).Run();
}
