#pragma once

#include "server/TarHeader.h"
#include "server/Workspace.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Takes the next bytes of an archive. @return false when no more are wanted
using ByteSink = std::function<bool(const char* bytes, std::size_t size)>;

/// The backup archive of a workspace: a tar archive of "info.json" and of "workspaces/Workspace.osws", which
/// is itself a tar archive of the workspace's files and folders. What is neither is left out; links are not
/// followed. Only names and sizes are held; the files are read while the archive is sent.
class BackupArchive final {
  public:
    /// Looks the workspace's tree over.
    /// @param info content of "info.json"
    /// @throws RequestError with status 500 when a folder cannot be read or the tree is too deep
    BackupArchive(Workspace::Snapshot workspace, std::string info);

    /// Bytes of the whole archive.
    [[nodiscard]] std::uint64_t Size() const;

    /// Gives the archive, Size() bytes, piece by piece.
    /// @return false when the sink wanted no more, or a file is no longer as it was when the tree was looked
    ///         over
    [[nodiscard]] bool Send(const ByteSink& sink) const;

  private:
    struct Item {
        std::string name;
        TarKind kind;
        std::uint64_t size;
        std::uint64_t modified;
    };

    void AddFolder(const FolderHandle& folder, const std::string& prefix, unsigned depth);
    void AddSubfolder(const FolderHandle& parent, const Item& item, unsigned depth);
    [[nodiscard]] bool SendFile(const Item& item, const ByteSink& sink) const;
    [[nodiscard]] static std::string Header(const Item& item);

    Workspace::Snapshot workspace;
    std::string info;
    std::vector<Item> items;
    std::uint64_t innerSize = kTarEnd;
};
