#pragma once

#include "cinder/TarName.h"
#include "cinder/bTar.h"
#include "server/Workspace.h"
#include "server/WorkspaceTree.h"
#include "server/handlers/Handler.h"

#include <cstdint>
#include <string>

/// The backup archive of a workspace: a tar archive of "info.json" and of "workspaces/Workspace.osws", which
/// is itself a tar archive of the workspace's files and folders. Only names and file attributes are held in
/// memory; the files are read while the archive is sent.
class BackupArchive final {
  public:
    /// Lists the workspace's tree.
    /// @param info the content of "info.json"
    /// @throws HttpError with status 500 when a folder cannot be read, or a client would reject a name
    BackupArchive(Workspace::Snapshot workspace, std::string info);

    /// The archive's size in bytes, known before the first one is sent.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// Links and special files in the workspace, which the archive does not contain.
    [[nodiscard]] const LeftOut& LinksLeftOut() const { return tree.LinksLeftOut(); }

    /// Passes the archive to the sink in pieces, Size() bytes; fewer when the sink stops, or when a file has
    /// changed since the tree was listed.
    void Send(const ByteSink& sink) const;

  private:
    /// Read sends the content of the files; Counted sends placeholder bytes of the same length, to measure.
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
