#pragma once

#include "cinder/TarName.h"
#include "cinder/bTar.h"
#include "server/Workspace.h"
#include "server/WorkspaceTree.h"
#include "server/handlers/Handler.h"

#include <cstdint>
#include <string>

/// The backup archive of a workspace: a tar archive of "info.json" and of "workspaces/Workspace.osws", which
/// is itself a tar archive of the workspace's files and folders. Only names and facts are held; the files are
/// read while the archive is sent.
class BackupArchive final {
  public:
    /// Looks the workspace's tree over.
    /// @param info content of "info.json"
    /// @throws HttpError with status 500 when a folder cannot be read, or the tree has what no client accepts
    BackupArchive(Workspace::Snapshot workspace, std::string info);

    /// Bytes of the whole archive, known before the first one is sent.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// What the workspace has beside files and folders.
    [[nodiscard]] const LeftOut& LinksLeftOut() const { return tree.LinksLeftOut(); }

    /// Gives the archive, Size() bytes, piece by piece; fewer when the sink wanted no more, or a file is no
    /// longer as it was when the tree was looked over.
    void Send(const ByteSink& sink) const;

  private:
    /// Whether the bytes of the files are those on the disk, or only as many.
    enum class Data { Read, Counted };

    [[nodiscard]] bStatus Write(const bFile::Sink& sink, Data data) const;
    [[nodiscard]] bStatus WriteInner(const bFile::Sink& sink, Data data) const;
    [[nodiscard]] std::uint64_t Measured(bStatus (BackupArchive::*write)(const bFile::Sink&, Data)
                                             const) const;

    Workspace::Snapshot workspace;
    std::string info;
    WorkspaceTree tree;
    std::uint64_t innerSize = 0;
    std::uint64_t size = 0;
};
