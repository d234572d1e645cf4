#pragma once

#include "OperatorFiles.h"
#include "OstraServerProcess.h"
#include "WindowOperator.h"

#include <memory>

/// One operation on the operator's files, with its preparation and its checks. The working folder is the
/// editor's; "../desk/" holds other files of the operator.
class Scenario {
  public:
    Scenario() = default;
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;
    virtual ~Scenario() = default;

    /// The files that exist before the editor starts.
    [[nodiscard]] virtual FileTree Before() const = 0;
    /// Starts a server for this run only, before the editor starts. @return null when none is needed
    [[nodiscard]] virtual std::unique_ptr<OstraServerProcess> Serve() const { return nullptr; }
    /// The steps of the operator before the operation.
    virtual void Prepare(WindowOperator& window) const = 0;
    /// The operation into which the faults are injected. May be called again.
    virtual void Operate(WindowOperator& window) const = 0;
    /// The status text after success.
    [[nodiscard]] virtual std::string Success() const = 0;
    /// Checks the operator's files.
    /// @param finished whether the operation succeeded, so that the new content must be in place
    [[nodiscard]] virtual Problems Check(bool finished) const = 0;
    /// Checks that every kept copy is complete.
    [[nodiscard]] static Problems CheckKept();
    /// Checks what the window shows after success.
    [[nodiscard]] virtual Problems CheckShown(WindowOperator& /*window*/) const { return {}; }

  protected:
    /// Checks that the window lists exactly these tracks.
    static void CheckListed(Problems& problems, WindowOperator& window, const FileTree& tracks);

    /// Checks a folder: the target has the old or the new content (`isNew`), the new one if finished; all
    /// other files are unchanged; no other file looks like a track or a backup.
    /// @param target a name in the folder; empty when nothing may change
    template<typename IsNew>
    static void CheckFolder(Problems& problems, const std::string& folder, FileTree before,
                            const std::string& target, bool finished, IsNew isNew) {
        FileTree now = FilesIn(folder);
        const auto had = before.find(target);
        const auto has = now.find(target);
        const bool untouched =
            had == before.end() ? has == now.end() : has != now.end() && had->second == has->second;
        const bool renewed = has != now.end() && isNew(has->second);
        if (!target.empty() && !renewed && (finished || !untouched))
            problems.push_back(folder + target +
                               (has == now.end() ? " is missing" : " has the wrong content"));
        before.erase(target);
        now.erase(target);
        CheckOthers(problems, folder, before, now);
    }

    static void CheckOthers(Problems& problems, const std::string& folder, const FileTree& before,
                            const FileTree& now);
};

using NamedScenarios = std::vector<std::pair<std::string, std::unique_ptr<Scenario>>>;

/// The scenarios in the window, by name, in the order of the documentation.
NamedScenarios TrackScenarios();
NamedScenarios BackupScenarios();
/// The scenarios in which discarded work is kept as a copy.
NamedScenarios KeepingScenarios();
/// The scenarios that only read.
NamedScenarios LoadScenarios();
/// The scenarios that are run with read faults only: they write in the same way as others.
NamedScenarios UploadScenarios();

/// The tracks of the server from which the backup is downloaded.
FileTree ServedTracks();

inline const std::string kDesk = "../desk/";
inline const std::string kTracks = "./TmpDirOsws/vdk/ContourPath/";
