#pragma once

#include "OperatorFiles.h"
#include "OstraServerProcess.h"
#include "WindowOperator.h"

#include <memory>

/// One operation on the operator's files, from the first file to the last check. The working folder is the
/// editor's; "../desk/" beside it holds files that the operator has put there.
class Scenario {
  public:
    Scenario() = default;
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;
    virtual ~Scenario() = default;

    /// The files that stand there before the editor starts.
    [[nodiscard]] virtual FileTree Before() const = 0;
    /// Starts the server that this run alone uses, ahead of the editor. @return null when it needs none
    [[nodiscard]] virtual std::unique_ptr<OstraServerProcess> Serve() const { return nullptr; }
    /// What the operator does to get there.
    virtual void LeadUp(WindowOperator& window) const = 0;
    /// The operation on which the faults fall. It may be asked for again.
    virtual void Operate(WindowOperator& window) const = 0;
    /// What the status bar says when it has succeeded.
    [[nodiscard]] virtual std::string Success() const = 0;
    /// What is wrong with what the operator owns.
    /// @param finished the operation has succeeded: the new content has to stand
    [[nodiscard]] virtual Problems Check(bool finished) const = 0;
    /// What is wrong with the kept copies: each is complete.
    [[nodiscard]] static Problems CheckKept();
    /// What is wrong with what the window shows after success.
    [[nodiscard]] virtual Problems CheckShown(WindowOperator& /*window*/) const { return {}; }

  protected:
    /// That the window lists these tracks and no others.
    static void CheckListed(Problems& problems, WindowOperator& window, const FileTree& tracks);

    /// Compares a folder with what has to be in it: the target holds the old or the new content (`isNew`),
    /// the new one when finished; all else is as it was; nothing stands there that would be taken for
    /// content.
    /// @param target a name in the folder; empty when nothing may have changed
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
                               (has == now.end() ? " is missing" : " is not what it should be"));
        before.erase(target);
        now.erase(target);
        CheckOthers(problems, folder, before, now);
    }

    static void CheckOthers(Problems& problems, const std::string& folder, const FileTree& before,
                            const FileTree& now);
};

/// The scenarios through the window by their names in the order of the documentation.
std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> TrackScenarios();
std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> BackupScenarios();
/// The scenarios on which copies are kept of what they discard.
std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> KeepingScenarios();
/// The scenarios that only read.
std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> LoadScenarios();
/// The scenarios on which only failing reads are new: what they write, others write in the same way.
std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> UploadScenarios();

/// What the server that the backup is fetched from holds.
FileTree ServedTracks();

inline const std::string kDesk = "../desk/";
inline const std::string kTracks = "./TmpDirOsws/vdk/ContourPath/";
