#include "cinder/UnpackFolder.h"

#include "basalt/Exception.h"
#include "basalt/HiddenFile.h"
#include "basalt/InputFile.h"
#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "cinder/ConfinedFolder.h"
#include "cinder/TarName.h"
#include "cinder/bTar.h"

#include <array>
#include <new>
#include <optional>
#include <utility>

namespace {

/// The limit on all copies of hard links together: the largest archive that a request can carry.
constexpr std::int64_t kMaxCopied = std::int64_t{4} << 30U;

const std::string kUnsafe = "the name leads outside, is no file's, or nests too deep";

constexpr unsigned kPrivateFile = 0600;
constexpr unsigned kPrivateFolder = 0700;

template<typename Reason = std::error_code>
[[noreturn]] void Fail(int line, bStatus status, const std::string& message, const Reason& why = {}) {
    throw Ve::Exception(line, __FILE__, status, "UnpackFolder", "%s", message.c_str()).Because(why);
}

FileFacts Usable(FileFacts facts) {
    facts.permissions = UsablePermissions(facts.kind, facts.permissions);
    return facts;
}

/// How a hard link to an entry of the archive is treated.
enum class HardLinks { Copied, Refused };

/// Unpacks one archive into one fresh folder.
class Unpacker {
  public:
    Unpacker(bTar* tar, const std::string& targetDirectory, FolderHandle target, HardLinks hardLinks)
        : tar(tar),
          folder(std::move(target)),
          prefix(targetDirectory.ends_with('/') ? targetDirectory : targetDirectory + "/"),
          hardLinks(hardLinks) {}

    Unpacking UnpackEntries() {
        std::array<char, bTar_NAME_SIZE> name{};
        int kind = 0;
        std::int64_t size = 0;
        while ((result.end = bTar_BeginRead(tar, name.data(), name.size(), &kind, &size)) == bOK) {
            if (kind != bTar_FILE)
                UnpackDirectory(name.data());
            else if (const char* const target = bTar_LinkTarget(tar))
                UnpackHardLink(name.data(), target);
            else
                UnpackFile(name.data());
        }
        // Otherwise what was not read would be missing from the next backup.
        if (result.end == bERROR_MEMORY)
            throw std::bad_alloc();
        // What follows the name is lost with it, so this end is reported.
        if (result.end == bERROR_TOO_LONG)
            Fail(__LINE__, result.end, "Failed to read item - " + PrintableTarName(name.data()));
        if (const std::error_code reason = folder.Leave())
            Fail(__LINE__, bERROR_FILE, "Failed to write " + prefix, reason);
        result.leftOut.Add(bTar_LeftOut(tar));
        result.reason = result.end == bERROR_END ? "" : bTar_Reason(tar);
        return result;
    }

  private:
    [[nodiscard]] std::string PathOf(const std::string& name) const {
        return prefix + PrintableTarName(name);
    }

    void UnpackFile(const std::string& name) {
        std::string_view block;
        // The first read comes before the file is created: it fails when the archive cannot hold the data.
        bStatus status = ReadBlock(name, &block);
        const ConfinedFolder::Parts parts = PartsOfFile(name);
        HiddenFile file(ParentOf(name, parts), kPrivateFile);
        if (!file.IsOpen())
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name), file.Failure());
        for (; status == bOK; status = ReadBlock(name, &block))
            Write(file, name, block);
        Keep(file, name, parts, bTar_Facts(tar));
    }

    /// Copies the target of a hard link, if it is one of the unpacked files.
    void UnpackHardLink(const std::string& name, const std::string& target) {
        if (hardLinks == HardLinks::Refused)
            Fail(__LINE__, bERROR_FORMAT, "The archive holds links or special files.");
        InputFile source = OpenLinked(target);
        FileFacts facts;
        if (!source.IsOpen() || !source.Ask(&facts))
            return result.leftOut.Add(name);
        const ConfinedFolder::Parts parts = PartsOfFile(name);
        HiddenFile file(ParentOf(name, parts), kPrivateFile);
        if (!file.IsOpen())
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name), file.Failure());
        Copy(source, file, name);
        Keep(file, name, parts, facts);
    }

    [[nodiscard]] InputFile OpenLinked(const std::string& target) {
        const ConfinedFolder::Parts parts = TarNameParts(target);
        if (!IsConfinedTarName(target) || parts.empty())
            return {};
        return {folder.Enter(parts, parts.size() - 1), parts.back()};
    }

    void Copy(InputFile& source, HiddenFile& file, const std::string& name) {
        std::array<char, std::size_t{64} * 1024> piece{};
        std::size_t count = piece.size();
        while (count == piece.size()) {
            if (!source.Read(piece.data(), piece.size(), &count))
                Fail(__LINE__, bERROR_FILE, "Failed to read item - " + PrintableTarName(name),
                     source.Failure());
            copied += static_cast<std::int64_t>(count);
            if (copied > kMaxCopied)
                Fail(__LINE__, bERROR_LIMIT, "Failed to read item - " + PrintableTarName(name));
            Write(file, name, {piece.data(), count});
        }
    }

    void UnpackDirectory(const std::string& name) {
        const ConfinedFolder::Parts parts = TarNameParts(name);
        if (!IsConfinedTarName(name))
            Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + PathOf(name), kUnsafe);
        if (const std::error_code reason = MakeFolder(parts, Usable(bTar_Facts(tar))))
            Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + PathOf(name), reason);
    }

    /// @return 1 or bERROR_END
    bStatus ReadBlock(const std::string& name, std::string_view* block) {
        const bStatus status = bTar_ReadBlock(tar, block);
        if (status != bOK && status != bERROR_END)
            Fail(__LINE__, status, "Failed to read item - " + PrintableTarName(name), bTar_Reason(tar));
        return status;
    }

    [[nodiscard]] ConfinedFolder::Parts PartsOfFile(const std::string& name) const {
        ConfinedFolder::Parts parts = TarNameParts(name);
        if (!IsConfinedTarName(name) || parts.empty() || !name.ends_with(parts.back()))
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name), kUnsafe);
        return parts;
    }

    /// The folder of a file, created if it is missing; one level only, since the directories above have
    /// earlier entries of their own. A file may be replaced; anything else of that name is an error.
    [[nodiscard]] const FolderHandle& ParentOf(const std::string& name, const ConfinedFolder::Parts& parts) {
        if (const std::error_code reason = MakeFolder({parts.begin(), parts.end() - 1}))
            Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + PathOf(name), reason);
        const FolderHandle& parent = folder.Enter(parts, parts.size() - 1);
        replaced = {};
        const std::error_code missing = parent.Ask(parts.back(), &replaced.emplace());
        if (missing)
            replaced.reset();
        if (missing ? missing != std::errc::no_such_file_or_directory : replaced->kind != FileKind::File)
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name));
        return parent;
    }

    template<typename... Facts>
    [[nodiscard]] std::error_code MakeFolder(const ConfinedFolder::Parts& parts, const Facts&... facts) {
        bool isNew = false;
        const std::error_code reason = folder.MakeFolder(parts, facts..., &isNew);
        result.folders += isNew ? 1 : 0;
        return reason;
    }

    void Write(HiddenFile& file, const std::string& name, std::string_view block) {
        if (!file.Write(block.data(), block.size()))
            Fail(__LINE__, bERROR_FILE, "Failed to write " + PathOf(name), file.Failure());
        written += static_cast<std::int64_t>(block.size());
    }

    void Keep(HiddenFile& file, const std::string& name, const ConfinedFolder::Parts& parts,
              const FileFacts& facts) {
        if (!file.Describe(Usable(facts)) || !file.Keep(parts.back()))
            Fail(__LINE__, bERROR_FILE, "Failed to write " + PathOf(name), file.Failure());
        result.files += replaced ? 0 : 1;
        result.bytes += std::exchange(written, 0) - (replaced ? replaced->size : 0);
    }

    bTar* tar;
    ConfinedFolder folder;
    std::string prefix;
    HardLinks hardLinks;
    Unpacking result;
    std::optional<FileFacts> replaced; ///< the previous file of the current entry's name
    std::int64_t written = 0;          ///< bytes of the current entry
    std::int64_t copied = 0;           ///< bytes of all copies of hard links
};

bOwned<bFile> OpenArchiveFile(const std::string& tarFileName, bAlloc allocator) {
    if (bFile_Exists(tarFileName.c_str()) == 0)
        Fail(__LINE__, bERROR_NOT_FOUND, tarFileName + " doesn't exist.");
    bFile* file = nullptr;
    std::error_code why;
    if (const bStatus status = bFile_Construct(&file, tarFileName.c_str(), bFile_READ, allocator, &why);
        status != bOK)
        Fail(__LINE__, status, "Failed to construct a bFile object.", why);
    return bOwned<bFile>(file);
}

bOwned<bTar> OpenArchive(bFile* file, bAlloc allocator) {
    bTar* tar = nullptr;
    if (const bStatus status = bTar_Construct(&tar, file, bFile_READ, allocator); status != bOK)
        Fail(__LINE__, status, "Failed to construct a bTar object.");
    return bOwned<bTar>(tar);
}

/// Whatever permissions a file has in the archive, others cannot access it in a folder private to the owner.
FolderHandle MakeFresh(const std::string& directory) {
    bStatus status = bOK;
    std::error_code why;
    if (bDirectory_Exists(directory.c_str()) != 0 &&
        (status = bDirectory_Delete(directory.c_str(), &why)) != bOK)
        Fail(__LINE__, status, "Failed to delete the existing directory - " + directory, why);
    if ((status = bDirectory_Create(directory.c_str(), &why)) != bOK)
        Fail(__LINE__, status, "Failed to create the directory - " + directory, why);
    FolderHandle made(directory, FolderHandle::Links::Refused);
    FileFacts facts;
    if (made.Ask(".", &facts))
        Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + directory);
    facts.permissions = kPrivateFolder;
    if (const std::error_code reason = made.Describe(facts))
        Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + directory, reason);
    return made;
}

} // namespace

Unpacking UnpackFolder(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator) {
    const bOwned<bFile> file = OpenArchiveFile(tarFileName, allocator);
    const bOwned<bTar> tar = OpenArchive(file.get(), allocator);
    Unpacking result =
        Unpacker(tar.get(), targetDirectory, MakeFresh(targetDirectory), HardLinks::Copied).UnpackEntries();
    // A read error and our own limits are not the end of the archive: the rest exists, and would be missing
    // from the next backup.
    if (result.end == bERROR_FILE || result.end == bERROR_LIMIT)
        Fail(__LINE__, result.end, "Failed to read item - " + tarFileName, result.reason);
    return result;
}

void UnpackFolderStrictly(const std::string& tarFileName, const std::string& targetDirectory,
                          bAlloc allocator) {
    const Unpacking result = UnpackFolder(tarFileName, targetDirectory, allocator);
    if (result.end != bERROR_END)
        Fail(__LINE__, result.end, "The archive is damaged - " + tarFileName, result.reason);
}

Unpacking UnpackFolderStrictly(bFile* archive, const std::string& targetDirectory, bAlloc allocator) {
    const bOwned<bTar> tar = OpenArchive(archive, allocator);
    Unpacking result =
        Unpacker(tar.get(), targetDirectory, MakeFresh(targetDirectory), HardLinks::Refused).UnpackEntries();
    if (result.end != bERROR_END)
        Fail(__LINE__, result.end, "The archive is damaged.", result.reason);
    if (result.leftOut.count != 0)
        Fail(__LINE__, bERROR_FORMAT, "The archive holds links or special files.");
    return result;
}
