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

/// A folder beside the workspace into which a new one is unpacked; removed with the object.
class StagedFolder final {
  public:
    explicit StagedFolder(std::string path) : path(std::move(path)) {}
    StagedFolder(StagedFolder&& other) noexcept : path(std::exchange(other.path, {})) {}
    StagedFolder& operator=(StagedFolder&&) = delete;
    ~StagedFolder();

    /// The folder to unpack into; the caller creates it.
    [[nodiscard]] std::string Tree() const { return path + "/workspace"; }
    /// A file with the ID of the unpacked folder, written before the folders are exchanged.
    [[nodiscard]] std::string Mark() const { return path + "/new"; }
    /// Passes the ownership of the folder to the caller.
    std::string Release() { return std::exchange(path, {}); }

  private:
    std::string path;
};

/// The folder that the server serves, and its atomic replacement.
///
/// The folder's path always leads to the complete old content or the complete new one. New content is
/// unpacked beside it, in ".NAME.ostra-new-XXXXXX", and the two are exchanged in one step; the replaced
/// content is kept until `keep` newer ones exist. Where the file system cannot exchange, the old folder is
/// ".NAME.ostra-old" for a moment. Thread-safe.
class Workspace final {
  public:
    class Generation;

    /// The workspace at one moment. Its files remain readable as long as the object lives, even when the
    /// workspace is replaced.
    struct Snapshot {
        FolderHandle folder;
        std::shared_ptr<Generation> generation;
    };

    /// Changes nothing on the disk.
    /// @param keep how many previous contents are kept
    /// @throws std::runtime_error when the folder does not exist
    Workspace(const std::string& path, std::size_t keep);

    /// Takes the lock ".NAME.ostra-lock", so that no other process changes the workspace.
    /// @throws std::runtime_error when another process holds it
    void Lock();
    /// Cleans up after a server that was killed, and removes surplus kept contents. To be called directly
    /// after Lock.
    /// @throws std::runtime_error when that fails
    void Recover();

    /// @throws std::runtime_error when the folder cannot be opened
    [[nodiscard]] Snapshot Open() const;

    /// Creates a folder beside the workspace to unpack a new one in.
    /// @throws std::runtime_error when that fails
    [[nodiscard]] StagedFolder Stage() const;

    /// Replaces the workspace by an unpacked folder, which gets the workspace's owner and permissions. The
    /// old content is kept; surplus kept contents are removed when their last snapshot is destroyed.
    /// @return whether the old content could be kept
    /// @throws std::runtime_error when the replacement fails; the old workspace is still served
    [[nodiscard]] bool Replace(StagedFolder staged);

    /// The kept contents, by the time when each was replaced, newest first.
    [[nodiscard]] std::vector<std::string> Kept() const { return kept.Times(); }
    /// Makes a kept content the workspace again, and keeps the current workspace.
    /// @return the time under which the current workspace is kept
    /// @throws std::runtime_error when no content is kept under this time, or the exchange fails
    std::string PutBack(const std::string& time);

  private:
    using Generations = std::vector<std::shared_ptr<Generation>>;

    [[nodiscard]] std::string Beside(const std::string& role) const;
    [[nodiscard]] bool ExchangeWith(const std::string& tree) const;
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
    std::map<std::string, std::shared_ptr<Generation>> keptGenerations; ///< of this run, by time
};
