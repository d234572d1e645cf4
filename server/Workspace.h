#pragma once

#include "basalt/FolderHandle.h"

#include <memory>
#include <mutex>
#include <string>

/// A folder beside the workspace that is being filled; removed with the object unless it was put in place.
class StagedFolder final {
  public:
    explicit StagedFolder(std::string path) : path(std::move(path)) {}
    StagedFolder(StagedFolder&& other) noexcept : path(std::exchange(other.path, {})) {}
    StagedFolder& operator=(StagedFolder&&) = delete;
    ~StagedFolder();

    /// The folder to fill; it is yet to be made.
    [[nodiscard]] std::string Tree() const { return path + "/workspace"; }
    /// Leaves the folder to the caller.
    std::string Release() { return std::exchange(path, {}); }

  private:
    std::string path;
};

/// The folder that the server serves, and its replacement as a whole.
///
/// Under the folder's name always stands the old content or the new one. A new one is filled beside it, in
/// ".NAME.ostra-new-XXXXXX", and both are exchanged in one step. Where the file system cannot exchange, the
/// old folder waits as ".NAME.ostra-old" for a moment; a server that is killed in that moment puts it back at
/// its next start, which also removes what an earlier one left half-done. One server serves a folder at a
/// time. Safe to use from several threads.
class Workspace final {
  public:
    class Generation;

    /// The workspace as it stands at one moment. Its files stay readable until the object goes, even when the
    /// workspace is replaced meanwhile.
    struct Snapshot {
        FolderHandle folder;
        std::shared_ptr<Generation> generation;
    };

    /// @throws std::runtime_error when there is no such folder
    explicit Workspace(const std::string& path);

    /// @throws std::runtime_error when the folder cannot be opened
    [[nodiscard]] Snapshot Open() const;

    /// The folder that holds the workspace, on the same file system.
    [[nodiscard]] const std::string& Parent() const { return parent; }

    /// A place beside the workspace to unpack a new one in.
    /// @throws std::runtime_error when it cannot be made
    [[nodiscard]] StagedFolder Stage() const;

    /// Puts a filled folder in the workspace's place, with the workspace's permissions; the old one is
    /// removed when its last snapshot is gone.
    /// @throws std::runtime_error when that fails; the old workspace then stands as before
    void Replace(StagedFolder staged);

  private:
    void Recover() const;
    void RemoveLeftovers() const;
    [[nodiscard]] std::string Beside(const char* role) const;

    std::string parent;
    std::string name;
    std::string target;
    mutable std::mutex mutex;
    std::shared_ptr<Generation> current;
};
