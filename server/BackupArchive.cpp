#include "server/BackupArchive.h"

#include "basalt/InputFile.h"
#include "cinder/ConfinedFolder.h"
#include "server/http/HttpError.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kPiece = std::size_t{256} * 1024;

/// A tar archive that is written to a sink.
class SentTar {
  public:
    explicit SentTar(const bFile::Sink& sink) {
        bFile* opened = nullptr;
        // After a failure not even the end marker is written: the archive must not look complete.
        const auto whileGood = [this, sink](const void* bytes, std::size_t size) {
            return status == bOK ? sink(bytes, size) : status;
        };
        status = bFile_ConstructInto(&opened, whileGood, bAlloc_Application());
        file.reset(opened);
        bTar* archive = nullptr;
        if (status == bOK)
            status = bTar_Construct(&archive, opened, bFile_WRITE, bAlloc_Application());
        tar.reset(archive);
    }

    void AddFolder(const std::string& name) {
        Do(&bTar_BeginWrite, name.c_str(), bTar_DIRECTORY, std::int64_t{0});
    }
    void BeginFile(const std::string& name, std::uint64_t size) {
        Do(&bTar_BeginWrite, name.c_str(), bTar_FILE, static_cast<std::int64_t>(size));
    }
    void Describe(const FileFacts& facts) { bTar_Describe(tar.get(), facts); }
    bStatus Write(std::string_view bytes) { return Do(&bTar_WriteBlock, bytes); }
    /// Records a failure from elsewhere.
    void Fail(bStatus failure) { status = status == bOK ? failure : status; }
    [[nodiscard]] bool IsGood() const { return status == bOK; }
    SentTar(const SentTar&) = delete;
    SentTar& operator=(const SentTar&) = delete;

    bStatus End() {
        const bStatus ended = xbObject_DestroyImpl(tar.release());
        Fail(ended);
        return status;
    }

  private:
    template<typename Step, typename... Arguments>
    bStatus Do(Step step, Arguments... arguments) {
        if (status == bOK)
            status = step(tar.get(), arguments...);
        return status;
    }

    bStatus status = bOK;
    bOwned<bFile> file;
    bOwned<bTar> tar; ///< destroyed before its file
};

/// The size of the next piece.
std::size_t PieceOf(std::int64_t left) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(static_cast<std::uint64_t>(left), kPiece));
}

/// Writes the content of a file; fails when its size has changed since it was listed.
void Copy(InputFile file, const FileFacts& facts, std::vector<char>& piece, SentTar& tar) {
    FileFacts now;
    if (!file.IsOpen() || !file.Ask(&now) || now.size != facts.size)
        return tar.Fail(bERROR_FILE);
    for (std::int64_t left = facts.size; left > 0 && tar.IsGood();) {
        std::size_t count = 0;
        const auto wanted = PieceOf(left);
        if (!file.Read(piece.data(), wanted, &count) || count < wanted)
            return tar.Fail(bERROR_FILE);
        tar.Write({piece.data(), count});
        left -= static_cast<std::int64_t>(count);
    }
}

/// Writes placeholder bytes, as many as the file has.
void Count(const FileFacts& facts, const std::vector<char>& piece, SentTar& tar) {
    for (std::int64_t left = facts.size; left > 0 && tar.IsGood();) {
        const auto count = PieceOf(left);
        tar.Write({piece.data(), count});
        left -= static_cast<std::int64_t>(count);
    }
}

} // namespace

BackupArchive::BackupArchive(Workspace::Snapshot snapshot, std::string info)
    : workspace(std::move(snapshot)), info(std::move(info)), tree(workspace.folder) {
    innerSize = Measured(&BackupArchive::WriteInner);
    size = Measured(&BackupArchive::Write);
}

/// The size of the headers between the files depends on names and attributes, so the archive is written once
/// to a sink that only counts.
std::uint64_t BackupArchive::Measured(bStatus (BackupArchive::*write)(const bFile::Sink&, Data) const) const {
    std::uint64_t bytes = 0;
    const bStatus status = (this->*write)(
        [&](const void*, std::size_t count) {
            bytes += count;
            return bOK;
        },
        Data::Counted);
    if (status != bOK)
        throw HttpError(500, "The workspace has a name that clients would reject.");
    return bytes;
}

void BackupArchive::Send(const ByteSink& sink) const {
    static_cast<void>(Write(
        [&](const void* bytes, std::size_t count) {
            return sink({static_cast<const char*>(bytes), count}) ? bOK : bERROR_CONNECTION;
        },
        Data::Read));
}

bStatus BackupArchive::Write(const bFile::Sink& sink, Data data) const {
    SentTar tar(sink);
    tar.BeginFile("info.json", info.size());
    tar.Write(info);
    tar.AddFolder("workspaces");
    tar.BeginFile("workspaces/Workspace.osws", innerSize);
    if (tar.IsGood())
        tar.Fail(WriteInner(
            [&](const void* bytes, std::size_t count) {
                return tar.Write({static_cast<const char*>(bytes), count});
            },
            data));
    return tar.End();
}

bStatus BackupArchive::WriteInner(const bFile::Sink& sink, Data data) const {
    SentTar tar(sink);
    ConfinedFolder folders(data == Data::Read ? workspace.folder.OpenFolder(".") : FolderHandle());
    std::vector<char> piece(kPiece);
    for (const WorkspaceTree::Item& item : tree.Items()) {
        if (!tar.IsGood())
            break;
        tar.Describe(item.facts);
        if (item.facts.kind == FileKind::Folder) {
            tar.AddFolder(item.name);
            continue;
        }
        tar.BeginFile(item.name, static_cast<std::uint64_t>(item.facts.size));
        const ConfinedFolder::Parts parts = TarNameParts(item.name);
        if (data == Data::Counted)
            Count(item.facts, piece, tar);
        else
            Copy({folders.Enter(parts, parts.size() - 1), parts.back()}, item.facts, piece, tar);
    }
    return tar.End();
}
