#include "server/RestoredBackup.h"

#include "basalt/Exception.h"
#include "cinder/TarName.h"
#include "cinder/UnpackFolder.h"
#include "server/JsonObject.h"
#include "server/RequestError.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

namespace {

constexpr std::size_t kLargestInfo = std::size_t{64} * 1024;

[[noreturn]] void Refuse(const std::string& text) {
    throw RequestError(422, text);
}

bOwned<bFile> OpenOver(bFile::Source source, std::int64_t size) {
    bFile* file = nullptr;
    if (bFile_ConstructOver(&file, std::move(source), size, bAlloc_Application()) != bOK)
        throw std::bad_alloc();
    return bOwned<bFile>(file);
}

/// The name without empty parts and ".".
std::string PlainName(const std::string& name) {
    std::string plain;
    for (const std::string& part : TarNameParts(name))
        plain += (plain.empty() ? "" : "/") + part;
    return plain;
}

/// What went wrong with the inner archive, without the path of the folder it was to be unpacked into.
RequestError Reported(const Ve::Exception& failure, const std::string& target) {
    std::string text = failure.what();
    for (std::size_t at = 0; (at = text.find(target, at)) != std::string::npos;)
        text.erase(at, target.size());
    const bool diskFailed = text.rfind("Failed to write ", 0) == 0;
    return {diskFailed ? 500U : 422U, "workspaces/Workspace.osws: " + text};
}

} // namespace

void RestoredBackup::Unpack(const std::string& target) {
    const bOwned<bFile> file =
        OpenOver([this](char* room, std::size_t capacity,
                        std::string_view* block) { return ReadBody(room, capacity, block); },
                 static_cast<std::int64_t>(left));
    bTar* tar = nullptr;
    if (bTar_Construct(&tar, file.get(), bFile_READ, bAlloc_Application()) != bOK)
        Refuse("The archive is no tar archive.");
    outer.reset(tar);
    try {
        ReadEntries(target);
    } catch (const Ve::Exception& failure) {
        throw Reported(failure, target);
    }
    outer.reset();
    if (!workspaceSeen)
        Refuse("The archive holds no workspaces/Workspace.osws.");
    if (!std::filesystem::is_directory(target + "/vdk/ContourPath"))
        Refuse("The workspace has no vdk/ContourPath.");
}

void RestoredBackup::ReadEntries(const std::string& target) {
    std::array<char, bTar_NAME_SIZE> name{};
    int kind = 0;
    std::int64_t size = 0;
    bStatus status = bOK;
    while ((status = bTar_BeginRead(outer.get(), name.data(), name.size(), &kind, &size)) == bOK) {
        if (!IsNarrowTarName(name.data()))
            Refuse("The archive has an unsafe name.");
        if (bTar_LinkTarget(outer.get()) != nullptr)
            Refuse("The archive holds links or special files.");
        if (kind == bTar_FILE)
            ReadEntry(PlainName(name.data()), size, target);
    }
    if (status != bERROR_END)
        Refuse("The archive is damaged.");
    if (bTar_LeftOut(outer.get()).count != 0)
        Refuse("The archive holds links or special files.");
}

void RestoredBackup::ReadEntry(const std::string& name, std::int64_t size, const std::string& target) {
    if (name == "info.json")
        ReadInfo(size);
    else if (name == "workspaces/Workspace.osws")
        UnpackInner(size, target);
}

void RestoredBackup::ReadInfo(std::int64_t size) {
    if (infoSeen || size > static_cast<std::int64_t>(kLargestInfo))
        Refuse("info.json is there twice or too large.");
    infoSeen = true;
    std::string text;
    std::string_view block;
    do {
        if (ReadOuter(&block) != bOK)
            Refuse("info.json is damaged.");
        text.append(block);
    } while (!block.empty());
    const auto info = ParseJsonObject(text);
    if (!info)
        Refuse("info.json is no JSON object, repeats a key or nests too deep.");
    if (const QJsonValue mode = info->value(QLatin1String("replay")); mode.isBool())
        replay = mode.toBool();
}

void RestoredBackup::UnpackInner(std::int64_t size, const std::string& target) {
    if (workspaceSeen)
        Refuse("workspaces/Workspace.osws is there twice.");
    workspaceSeen = true;
    const bOwned<bFile> inner =
        OpenOver([this](char*, std::size_t, std::string_view* block) { return ReadOuter(block); }, size);
    UnpackFolderStrictly(inner.get(), target, bAlloc_Application());
}

bStatus RestoredBackup::ReadBody(char* room, std::size_t capacity, std::string_view* block) {
    *block = {};
    if (left == 0)
        return bOK;
    try {
        *block = {room, body.Take(room, static_cast<std::size_t>(std::min<std::uint64_t>(capacity, left)))};
    } catch (const RequestError&) {
        // No exception may pass through the archive library; whoever reads on in the body meets it again.
        return bERROR_FILE;
    }
    left -= block->size();
    return bOK;
}

/// The next bytes of the outer archive's entry, none at its end.
bStatus RestoredBackup::ReadOuter(std::string_view* block) {
    *block = {};
    const bStatus status = bTar_ReadBlock(outer.get(), block);
    return status == bERROR_END ? bOK : status;
}
