#include "cinder/PackFolder.h"

#include "basalt/Exception.h"
#include "basalt/bDirectory.h"
#include "basalt/bFile.h"
#include "cinder/bTar.h"

namespace {

constexpr std::size_t kWriteBufferSize = 65536;
constexpr std::size_t kListCapacity = 10;

[[noreturn]] void Fail(int line, bStatus status, const std::string& message, std::error_code why = {}) {
    throw Ve::Exception(line, __FILE__, status, "PackFolder", "%s", message.c_str()).Because(why);
}

/// Walks through one tree and writes it into one archive.
class Packer {
  public:
    /// @param output the file that the archive is written to
    Packer(bTar* tar, const bFile* output, const std::string& sourceDirectory)
        : tar(tar), output(output), sourceDirectory(sourceDirectory) {}

    /// @param relativePath below the source directory; empty for itself
    void PackDirectory(const std::string& relativePath) const {
        bOwned<bArrayList> files = NewList();
        const std::string directory =
            relativePath.empty() ? sourceDirectory : sourceDirectory + "/" + relativePath;
        if (!relativePath.empty())
            WriteDirectoryEntry(directory, relativePath);
        std::error_code why;
        if (const bStatus status = bDirectory_ListFiles(directory.c_str(), files.get(), &why); status != bOK)
            Fail(__LINE__, status, "Failed to list files in " + directory, why);
        for (const bString& name : files->Items())
            PackFile(directory + "/" + std::string(name));
        files.reset();
        PackDirectoriesIn(directory, relativePath);
    }

  private:
    [[nodiscard]] bOwned<bArrayList> NewList() const {
        bArrayList* list = nullptr;
        const bStatus status = bArrayList_Construct(&list, bString_TYPE, kListCapacity, tar->Allocator());
        if (status != bOK)
            Fail(__LINE__, status, "Failed to construct a bArrayList(bString) object.");
        return bOwned<bArrayList>(list);
    }

    void WriteDirectoryEntry(const std::string& directory, const std::string& relativePath) const {
        FileFacts facts;
        const FolderHandle folder(directory, FolderHandle::Links::Refused);
        const std::error_code why = folder.IsOpen() ? folder.Ask(".", &facts) : folder.Failure();
        if (why) // a folder that was removed since it was listed
            Fail(__LINE__, bERROR_FILE, "Failed to list files in " + directory, why);
        bTar_Describe(tar, facts);
        const bStatus status = bTar_BeginWrite(tar, relativePath.c_str(), bTar_DIRECTORY, 0);
        // The message names another directory, but it is the one that operators know.
        if (status != bOK)
            Fail(__LINE__, status, "Failed to create the replay directory.");
    }

    void PackFile(const std::string& path) const {
        const std::string entryName = path.substr(sourceDirectory.size() + 1);
        const std::int64_t size = bFile_Size(path.c_str());
        bFile* file = nullptr;
        std::error_code why;
        bStatus status = bFile_Construct(&file, path.c_str(), bFile_READ, tar->Allocator(), &why);
        if (status == bOK) {
            status = xbTar_WriteFile(tar, entryName.c_str(), file, size);
            why = output->Failure() ? output->Failure() : file->Failure();
        }
        const bStatus closed = xbObject_DestroyImpl(file);
        if (status == bOK)
            status = closed;
        if (status != bOK)
            Fail(__LINE__, status, "Failed to write " + path, why);
    }

    void PackDirectoriesIn(const std::string& directory, const std::string& relativePath) const {
        const bOwned<bArrayList> directories = NewList();
        std::error_code why;
        const bStatus status = bDirectory_ListDirectories(directory.c_str(), directories.get(), &why);
        if (status != bOK)
            Fail(__LINE__, status, "Failed to list directories in " + directory, why);
        for (const bString& name : directories->Items())
            PackDirectory(relativePath.empty() ? std::string(name) : relativePath + "/" + std::string(name));
    }

    bTar* tar;
    const bFile* output;
    const std::string& sourceDirectory;
};

bOwned<bFile> NewArchiveFile(const std::string& tarFileName, bAlloc allocator) {
    bFile* file = nullptr;
    std::error_code why;
    if (const bStatus status = bFile_Construct(&file, tarFileName.c_str(), bFile_WRITE, allocator, &why);
        status != bOK)
        Fail(__LINE__, status, "Failed to construct " + tarFileName, why);
    bOwned<bFile> owned(file);
    if (const bStatus status = bFile_SetWriteBuffer(file, kWriteBufferSize); status != bOK)
        Fail(__LINE__, status, "Failed to allocate memory.");
    return owned;
}

bOwned<bTar> NewArchive(bFile* file, bAlloc allocator) {
    bTar* tar = nullptr;
    if (const bStatus status = bTar_Construct(&tar, file, bFile_WRITE, allocator); status != bOK)
        Fail(__LINE__, status, "Failed to construct a bTar object.");
    return bOwned<bTar>(tar);
}

} // namespace

void PackFolder(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator) {
    if (bDirectory_Exists(sourceDirectory.c_str()) == 0)
        Fail(__LINE__, bERROR_FILE, sourceDirectory + " is not a directory.");
    const bOwned<bFile> file = NewArchiveFile(tarFileName, allocator);
    bOwned<bTar> tar = NewArchive(file.get(), allocator);
    Packer(tar.get(), file.get(), sourceDirectory).PackDirectory("");
    bStatus status = xbObject_DestroyImpl(tar.release());
    if (status == bOK)
        status = bFile_Commit(file.get());
    if (status != bOK)
        Fail(__LINE__, status, "Failed to write " + tarFileName, file->Failure());
}
