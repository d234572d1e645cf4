#include "tools/backup/BackupWalk.h"

#include "cinder/TarName.h"
#include "tools/commandline/Failure.h"

#include <array>
#include <map>
#include <new>

namespace {

std::string ReasonFor(bStatus status) {
    switch (status) {
    case bERROR_FORMAT:
    case bERROR_FILE:
        return "the archive is damaged or cut short";
    case bERROR_TOO_LONG:
        return "a name is too long";
    case bERROR_LIMIT:
        return "there are too many entries";
    case bERROR_MEMORY:
        throw std::bad_alloc();
    default:
        return "the archive cannot be read further";
    }
}

bOwned<bTar> OpenArchive(bFile* file) {
    bTar* tar = nullptr;
    if (const bStatus status = bTar_Construct(&tar, file, bFile_READ, bAlloc_Application()); status != bOK)
        throw BackupDamage(ReasonFor(status));
    return bOwned<bTar>(tar);
}

/// Visits the entries of one of the two archives.
class Walk {
  public:
    Walk(bFile* archive, bool isWorkspace, const EntryVisitor& visit)
        : tar(OpenArchive(archive)), isWorkspace(isWorkspace), visit(visit) {}

    /// @return how many entries were skipped
    std::int64_t Run() {
        std::array<char, bTar_NAME_SIZE> name{};
        int kind = 0;
        std::int64_t size = 0;
        bStatus status = bOK;
        while ((status = bTar_BeginRead(tar.get(), name.data(), name.size(), &kind, &size)) == bOK) {
            const std::string plain = PlainTarName(name.data());
            last = PrintableTarName(plain);
            Take({isWorkspace, plain, kind != bTar_FILE, size, bTar_Facts(tar.get()).permissions,
                  IsConfinedTarName(name.data()) && !plain.empty(), Original(plain)});
        }
        if (status != bERROR_END)
            throw BackupDamage((isWorkspace ? "workspace: " : "") + ReasonFor(status) +
                               (last.empty() ? "" : " after " + last));
        return skipped + bTar_LeftOut(tar.get()).count;
    }

  private:
    /// The file that the current entry is a hard link to, resolved through other links; empty for a normal
    /// entry.
    std::string Original(const std::string& entry) {
        const char* const target = bTar_LinkTarget(tar.get());
        if (target == nullptr)
            return {};
        const std::string plain = PlainTarName(target);
        const auto link = links.find(plain);
        return links[entry] = link == links.end() ? plain : link->second;
    }

    void Take(const BackupEntry& entry) {
        visit(entry, EntryContent(tar.get(), last));
        if (!isWorkspace && !entry.isFolder && entry.name == kWorkspaceArchive)
            WalkWorkspace(entry.size);
    }

    void WalkWorkspace(std::int64_t size) {
        const auto source = [this](char* /*buffer*/, std::size_t /*capacity*/, std::string_view* block) {
            *block = {};
            const bStatus status = bTar_ReadBlock(tar.get(), block);
            return status == bERROR_END ? bOK : status;
        };
        bFile* opened = nullptr;
        if (bFile_ConstructOver(&opened, source, size, bAlloc_Application()) != bOK)
            throw std::bad_alloc();
        const bOwned<bFile> inner(opened);
        skipped += Walk(inner.get(), true, visit).Run();
    }

    bOwned<bTar> tar;
    bool isWorkspace;
    const EntryVisitor& visit;
    std::string last; ///< the printable name of the last entry
    std::int64_t skipped = 0;
    std::map<std::string, std::string> links; ///< hard links and their original files
};

} // namespace

std::string WorkspaceName(const std::string& given) {
    if (!IsConfinedTarName(given) || given.ends_with('/'))
        throw Failure(ExitCode::Misused,
                      "'" + PrintableTarName(given) + "' is not the name of a file in a workspace");
    return given.find('/') == std::string::npos ? std::string(kTrackFolder) + "/" + given : given;
}

bool EntryContent::Next(std::string_view* block) const {
    const bStatus status = bTar_ReadBlock(tar, block);
    if (status != bOK && status != bERROR_END)
        throw BackupDamage(name + ": " + ReasonFor(status));
    return status == bOK;
}

std::int64_t WalkBackup(bFile* archive, const EntryVisitor& visit) {
    return Walk(archive, false, visit).Run();
}
