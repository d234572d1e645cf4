#pragma once

#include "basalt/FileLock.h"
#include "basalt/FolderHandle.h"
#include "server/KeptWorkspaces.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A folder beside the workspace that is being filled; removed with the object.
class StagedFolder final {
  public:
    explicit StagedFolder(std::string path) : path(std::move(path)) {}
    StagedFolder(StagedFolder&& other) noexcept : path(std::exchange(other.path, {})) {}
    StagedFolder& operator=(StagedFolder&&) = delete;
    ~StagedFolder();

    /// The folder to fill; it is yet to be made.
    [[nodiscard]] std::string Tree() const { return path + "/workspace"; }
    /// A file that says which folder the tree was before it was exchanged.
    [[nodiscard]] std::string Mark() const { return path + "/new"; }
    /// Leaves the folder to the caller.
    std::string Release() { return std::exchange(path, {}); }

  private:
    std::string path;
};

/// The folder that the server serves, and its replacement as a whole.
///
/// What has the folder's name is always the old content or the new one. A new one is filled beside it, in
/// ".NAME.ostra-new-XXXXXX", and both are exchanged in one step; what was replaced is kept for some time.
/// Where the file system cannot exchange, the old folder is ".NAME.ostra-old" for a moment. Safe to use from
/// several threads.
class Workspace final {
  public:
    class Generation;

    /// The workspace at one moment. Its files stay readable until the object goes, even when the workspace is
    /// replaced meanwhile.
    struct Snapshot {
        FolderHandle folder;
        std::shared_ptr<Generation> generation;
    };

    /// Changes nothing yet.
    /// @param keep how many earlier contents are kept
    /// @throws std::runtime_error when there is no such folder
    Workspace(const std::string& path, std::size_t keep);

    /// Makes this the one process that changes the workspace: holds the lock ".NAME.ostra-lock" from now on.
    /// @throws std::runtime_error when another one does
    void Lock();
    /// Puts right what a server left that was killed, and removes what is no longer to be kept. Called once
    /// the workspace is locked, before all else.
    /// @throws std::runtime_error when that fails
    void Recover();

    /// @throws std::runtime_error when the folder cannot be opened
    [[nodiscard]] Snapshot Open() const;

    /// A place beside the workspace to unpack a new one in.
    /// @throws std::runtime_error when it cannot be made
    [[nodiscard]] StagedFolder Stage() const;

    /// Puts a filled folder in the workspace's place, with the workspace's owner and permissions. The old
    /// content is kept; one that is no longer to be kept is removed when its last snapshot has gone.
    /// @return whether the old content could be kept
    /// @throws std::runtime_error when that fails; the old workspace is served as before
    [[nodiscard]] bool Replace(StagedFolder staged);

    /// The contents that are kept, by the time when each was replaced, the newest first.
    [[nodiscard]] std::vector<std::string> Kept() const { return kept.Times(); }
    /// Makes a kept content the workspace again, and keeps what was the workspace.
    /// @return the time under which that is kept
    /// @throws std::runtime_error when there is none of this time, or that fails
    std::string PutBack(const std::string& time);

  private:
    using Generations = std::vector<std::shared_ptr<Generation>>;

    [[nodiscard]] std::string Beside(const std::string& role) const;
    [[nodiscard]] bool TakePlace(const std::string& tree) const;
    void RecoverOld();
    void RecoverStaged(const std::string& path);
    std::string Keep(const std::string& tree, std::shared_ptr<Generation> generation);
    void TakeSurplus(Generations& unused);

    std::string parent;
    std::string name;
    std::string target;
    std::size_t keep;
    std::optional<FileLock> lock;
    KeptWorkspaces kept;
    mutable std::mutex mutex;
    std::shared_ptr<Generation> current;
    std::map<std::string, std::shared_ptr<Generation>> keptGenerations; ///< of this run, by their times
};
