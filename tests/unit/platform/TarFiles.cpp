#include "TarFiles.h"

bOwned<bFile> Open(const char* path, int mode) {
    bFile* file = nullptr;
    EXPECT_EQ(bFile_Construct(&file, path, mode, bAlloc_Application()), bOK) << path;
    return bOwned<bFile>(file);
}

bOwned<bTar> OpenTar(const bOwned<bFile>& file, int mode) {
    bTar* tar = nullptr;
    EXPECT_EQ(bTar_Construct(&tar, file.get(), mode, bAlloc_Application()), bOK);
    return bOwned<bTar>(tar);
}

ArchiveReader::ArchiveReader(const std::string& archive) {
    WriteFile("read.tar", archive);
    file = Open("read.tar", bFile_READ);
    tar = OpenTar(file, bFile_READ);
}

bStatus ArchiveReader::Next() {
    return bTar_BeginRead(tar.get(), name.data(), name.size(), &kind, &size);
}

std::vector<std::string> Read(const std::string& archive) {
    ArchiveReader reader(archive);
    std::vector<std::string> lines;
    bStatus status = bOK;
    while ((status = reader.Next()) == bOK) {
        if (const char* const target = bTar_LinkTarget(reader.tar.get())) {
            lines.push_back(std::string(reader.name.data()) + "->" + target);
            continue;
        }
        std::string line = std::string(reader.name.data()) + (reader.kind == bTar_DIRECTORY ? "/" : "=");
        bStatus read = bOK;
        while ((read = bTar_ReadBlock(reader.tar.get(), &reader.block)) == bOK)
            line += reader.block;
        lines.push_back(read == bERROR_END ? line : line + "!" + std::to_string(read));
    }
    lines.push_back(std::to_string(status));
    return lines;
}

std::string Written(const std::function<void(bTar*)>& fill, bStatus expected) {
    {
        const auto file = Open("written.tar", bFile_WRITE);
        auto tar = OpenTar(file, bFile_WRITE);
        fill(tar.get());
        EXPECT_EQ(xbObject_DestroyImpl(tar.release()), expected);
        EXPECT_EQ(bFile_Commit(file.get()), bOK);
    }
    return FileContent("written.tar");
}

bStatus Add(bTar* tar, const std::string& name, const std::string& content) {
    WriteFile("content", content);
    const auto file = Open("content", bFile_READ);
    return xbTar_WriteFile(tar, name.c_str(), file.get(), static_cast<std::int64_t>(content.size()));
}
