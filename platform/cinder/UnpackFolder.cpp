#include "cinder/UnpackFolder.h"

#include "basalt/Exception.h"
#include "basalt/HiddenFile.h"
#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "cinder/ConfinedFolder.h"
#include "cinder/TarName.h"
#include "cinder/bTar.h"

#include <array>
#include <new>

namespace {

constexpr unsigned kDirectoryPermissions = 0777;

[[noreturn]] void Fail(int line, bStatus status, const std::string& message) {
    throw Ve::Exception(line, __FILE__, status, "UnpackFolder", "%s", message.c_str());
}

/// One archive on its way into one fresh folder.
class Unpacker {
  public:
    Unpacker(bTar* tar, const std::string& targetDirectory)
        : tar(tar),
          folder(targetDirectory),
          prefix(targetDirectory.ends_with('/') ? targetDirectory : targetDirectory + "/") {}

    /// @return the status that ended the archive
    bStatus UnpackEntries() {
        std::array<char, bTar_NAME_SIZE> name{};
        int kind = 0;
        std::int64_t size = 0;
        bStatus status = bOK;
        while ((status = bTar_BeginRead(tar, name.data(), name.size(), &kind, &size)) == bOK) {
            if (kind == bTar_FILE)
                UnpackFile(name.data());
            else
                UnpackDirectory(name.data());
        }
        // Else what was not read would be missing from the next backup.
        if (status == bERROR_MEMORY)
            throw std::bad_alloc();
        // What comes after the name is lost with it, so this end is not a quiet one.
        if (status == bERROR_TOO_LONG)
            Fail(__LINE__, status, "Failed to read item - " + PrintableTarName(name.data()));
        return status;
    }

  private:
    [[nodiscard]] std::string PathOf(const std::string& name) const {
        return prefix + PrintableTarName(name);
    }

    void UnpackFile(const std::string& name) {
        std::string_view block;
        // The first read comes before anything is made: it fails when the archive cannot hold the data.
        bStatus status = ReadBlock(name, &block);
        const std::vector<std::string> parts = TarNameParts(name);
        if (!IsNarrowTarName(name) || parts.empty() || !name.ends_with(parts.back()))
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name));
        MakeParent(name, parts);
        const FolderHandle parent = folder.OpenParent(parts);
        if (!IsFree(parent, parts.back()))
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name));
        HiddenFile file(parent, bTar_Permissions(tar) | 0600U);
        if (!file.IsOpen())
            Fail(__LINE__, bERROR_FILE, "Failed to open file - " + PathOf(name));
        for (; status == bOK; status = ReadBlock(name, &block))
            if (!file.Write(block.data(), block.size()))
                Fail(__LINE__, bERROR_FILE, "Failed to write " + PathOf(name));
        if (!file.Keep(parts.back()))
            Fail(__LINE__, bERROR_FILE, "Failed to write " + PathOf(name));
    }

    /// A file may be replaced; anything else that has the name is in the way.
    static bool IsFree(const FolderHandle& parent, const std::string& name) {
        FileFacts facts;
        const std::error_code failure = parent.Ask(name, &facts);
        return failure ? failure == std::errc::no_such_file_or_directory : facts.kind == FileKind::File;
    }

    /// @return 1 or bERROR_END
    bStatus ReadBlock(const std::string& name, std::string_view* block) {
        const bStatus status = bTar_ReadBlock(tar, block);
        if (status != bOK && status != bERROR_END)
            Fail(__LINE__, status, "Failed to read item - " + PrintableTarName(name));
        return status;
    }

    /// One level only: the directories above have entries of their own before.
    void MakeParent(const std::string& name, const std::vector<std::string>& parts) const {
        const std::vector<std::string> parent(parts.begin(), parts.end() - 1);
        if (!folder.MakeFolder(parent, kDirectoryPermissions))
            Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + PathOf(name));
    }

    void UnpackDirectory(const std::string& name) const {
        if (!IsNarrowTarName(name) || !folder.MakeFolder(TarNameParts(name), bTar_Permissions(tar)))
            Fail(__LINE__, bERROR_FILE, "Failed to create the directory - " + PathOf(name));
    }

    bTar* tar;
    ConfinedFolder folder;
    std::string prefix;
};

bOwned<bFile> OpenArchiveFile(const std::string& tarFileName, bAlloc allocator) {
    if (bFile_Exists(tarFileName.c_str()) == 0)
        Fail(__LINE__, bERROR_NOT_FOUND, tarFileName + " doesn't exist.");
    bFile* file = nullptr;
    if (const bStatus status = bFile_Construct(&file, tarFileName.c_str(), bFile_READ, allocator);
        status != bOK)
        Fail(__LINE__, status, "Failed to construct a bFile object.");
    return bOwned<bFile>(file);
}

bOwned<bTar> OpenArchive(bFile* file, bAlloc allocator) {
    bTar* tar = nullptr;
    if (const bStatus status = bTar_Construct(&tar, file, bFile_READ, allocator); status != bOK)
        Fail(__LINE__, status, "Failed to construct a bTar object.");
    return bOwned<bTar>(tar);
}

void MakeFresh(const std::string& directory) {
    bStatus status = bOK;
    if (bDirectory_Exists(directory.c_str()) != 0 && (status = bDirectory_Delete(directory.c_str())) != bOK)
        Fail(__LINE__, status, "Failed to delete the existing directory - " + directory);
    if ((status = bDirectory_Create(directory.c_str())) != bOK)
        Fail(__LINE__, status, "Failed to create the directory - " + directory);
}

} // namespace

bStatus UnpackFolder(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator) {
    const bOwned<bFile> file = OpenArchiveFile(tarFileName, allocator);
    const bOwned<bTar> tar = OpenArchive(file.get(), allocator);
    MakeFresh(targetDirectory);
    const bStatus end = Unpacker(tar.get(), targetDirectory).UnpackEntries();
    // A disk that cannot be read and a bound of our own are no end of the archive: the rest of it is there,
    // and would be missing from the next backup.
    if (end == bERROR_FILE || end == bERROR_LIMIT)
        Fail(__LINE__, end, "Failed to read item - " + tarFileName);
    return end;
}

void UnpackFolderStrictly(const std::string& tarFileName, const std::string& targetDirectory,
                          bAlloc allocator) {
    const bStatus end = UnpackFolder(tarFileName, targetDirectory, allocator);
    if (end != bERROR_END)
        Fail(__LINE__, end, "The archive is damaged - " + tarFileName);
}

void UnpackFolderStrictly(bFile* archive, const std::string& targetDirectory, bAlloc allocator) {
    const bOwned<bTar> tar = OpenArchive(archive, allocator);
    MakeFresh(targetDirectory);
    const bStatus end = Unpacker(tar.get(), targetDirectory).UnpackEntries();
    if (end != bERROR_END)
        Fail(__LINE__, end, "The archive is damaged.");
    if (bTar_PassedOver(tar.get()) != 0)
        Fail(__LINE__, bERROR_FORMAT, "The archive holds links or special files.");
}
