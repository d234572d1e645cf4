#include "server/RestoredBackup.h"

#include "basalt/Exception.h"
#include "basalt/bDirectory.h"
#include "cinder/TarName.h"
#include "server/WorkspaceTree.h"
#include "server/http/HttpError.h"
#include "wire/JsonText.h"

#include <array>

namespace {

constexpr std::int64_t kMaxInfo = std::int64_t{64} * 1024;

[[noreturn]] void Refuse(const std::string& text) {
    throw HttpError(422, text);
}

bOwned<bFile> OpenOver(bFile::Source source, std::uint64_t size) {
    bFile* file = nullptr;
    if (bFile_ConstructOver(&file, std::move(source), static_cast<std::int64_t>(size),
                            bAlloc_Application()) != bOK)
        throw std::bad_alloc();
    return bOwned<bFile>(file);
}

/// Whether the archive caused a failure: its names may not be valid in the file system.
bool IsCausedByArchive(const std::error_code& cause) {
    for (const std::errc nameError :
         {std::errc::no_such_file_or_directory, std::errc::not_a_directory, std::errc::file_exists,
          std::errc::filename_too_long, std::errc::illegal_byte_sequence, std::errc::invalid_argument})
        if (cause == nameError)
            return true;
    return !cause;
}

/// The error of the inner archive, without the path of the folder that it was being unpacked into.
HttpError Reported(const Ve::Exception& failure, const std::string& target) {
    std::string text = failure.what();
    for (std::size_t at = 0; (at = text.find(target, at)) != std::string::npos;)
        text.erase(at, target.size());
    return {IsCausedByArchive(failure.Cause()) ? 422U : 500U, "workspaces/Workspace.osws: " + text};
}

/// Fills the buffer unless the byte string ends before: files are written in few large pieces then.
std::size_t ReadUpTo(OstraSdk::ByteString& bytes, char* buffer, std::size_t capacity) {
    std::size_t filled = 0;
    while (const std::size_t count = bytes.Read(buffer + filled, capacity - filled))
        filled += count;
    return filled;
}

} // namespace

void RestoredBackup::Unpack(OstraSdk::ByteString& bytes) {
    try {
        staged.emplace(workspace.Stage());
        ReadEntries(bytes);
        if (!unpacked)
            Refuse("The archive holds no workspaces/Workspace.osws.");
        if (bDirectory_Exists((staged->Tree() + "/vdk/ContourPath").c_str()) == 0)
            Refuse("The workspace has no vdk/ContourPath.");
    } catch (...) {
        failure = std::current_exception();
        staged.reset(); // frees the space of a full disk while the rest of the request arrives
    }
}

RestoredBackup::Replaced RestoredBackup::PutInPlace() {
    if (failure)
        std::rethrow_exception(failure);
    CheckUnpacked();
    const Workspace::Snapshot before = workspace.Open();
    Replaced replaced;
    replaced.isKept = workspace.Replace(std::move(staged.value()));
    try {
        replaced.links = WorkspaceTree(before.folder).LinksLeftOut();
    } catch (const HttpError&) { // NOLINT(bugprone-empty-catch): the restore is done, its names are unknown
    }
    return replaced;
}

/// If someone has removed a part of the unpacked folder, it must not become the workspace.
void RestoredBackup::CheckUnpacked() const {
    const WorkspaceTree tree(FolderHandle(staged->Tree(), FolderHandle::Links::Refused));
    Unpacking found;
    for (const WorkspaceTree::Item& item : tree.Items()) {
        const bool isFile = item.facts.kind == FileKind::File;
        (isFile ? found.files : found.folders) += 1;
        found.bytes += isFile ? item.facts.size : 0;
    }
    if (found.files != unpacked->files || found.folders != unpacked->folders ||
        found.bytes != unpacked->bytes)
        throw HttpError(500, "The unpacked files were changed by another process.");
}

void RestoredBackup::ReadEntries(OstraSdk::ByteString& bytes) {
    const auto read = [&](char* buffer, std::size_t capacity, std::string_view* block) {
        try {
            *block = {buffer, ReadUpTo(bytes, buffer, capacity)};
            return bOK;
        } catch (const Ve::Exception&) {
            // No exception may pass through the archive library; the next read of the body throws it again.
            return bERROR_FILE;
        }
    };
    outerFile = OpenOver(read, bytes.Left());
    bTar* tar = nullptr;
    if (bTar_Construct(&tar, outerFile.get(), bFile_READ, bAlloc_Application()) != bOK)
        Refuse("The archive is not a tar archive.");
    outer.reset(tar);
    std::array<char, bTar_NAME_SIZE> name{};
    int kind = 0;
    std::int64_t size = 0;
    bStatus status = bOK;
    while ((status = bTar_BeginRead(tar, name.data(), name.size(), &kind, &size)) == bOK) {
        if (!IsConfinedTarName(name.data()))
            Refuse("The archive has an unsafe name.");
        if (bTar_LinkTarget(tar) != nullptr)
            Refuse("The archive holds links or special files.");
        if (kind == bTar_FILE)
            ReadEntry(PlainTarName(name.data()), size);
    }
    if (status != bERROR_END)
        Refuse("The archive is damaged.");
    if (bTar_LeftOut(tar).count != 0)
        Refuse("The archive holds links or special files.");
}

void RestoredBackup::ReadEntry(const std::string& name, std::int64_t size) {
    if (name == "info.json")
        ReadInfo(size);
    else if (name == "workspaces/Workspace.osws")
        UnpackInner(size);
}

void RestoredBackup::ReadInfo(std::int64_t size) {
    if (infoSeen || size > kMaxInfo)
        Refuse("info.json is repeated or too large.");
    infoSeen = true;
    std::string text;
    std::string_view block;
    do {
        if (ReadOuter(&block) != bOK)
            Refuse("info.json is damaged.");
        text.append(block);
    } while (!block.empty());
    try {
        const OstraSdk::VeJson info = OstraSdk::FromJsonText(text);
        if (!info.IsObject())
            Refuse("info.json is not an object.");
        if (info.Has("replay"))
            if (const bool* const mode = std::get_if<bool>(&info.At("replay").Content()))
                replay = *mode;
    } catch (const Ve::Exception& reason) {
        Refuse(std::string("info.json: ") + reason.what());
    }
}

void RestoredBackup::UnpackInner(std::int64_t size) {
    if (unpacked)
        Refuse("workspaces/Workspace.osws is repeated.");
    const bOwned<bFile> inner =
        OpenOver([this](char*, std::size_t, std::string_view* block) { return ReadOuter(block); },
                 static_cast<std::uint64_t>(size));
    try {
        unpacked = UnpackFolderStrictly(inner.get(), staged->Tree(), bAlloc_Application());
    } catch (const Ve::Exception& reason) {
        throw Reported(reason, staged->Tree());
    }
}

/// The next bytes of the outer archive's entry; empty at its end.
bStatus RestoredBackup::ReadOuter(std::string_view* block) const {
    *block = {};
    const bStatus status = bTar_ReadBlock(outer.get(), block);
    return status == bERROR_END ? bOK : status;
}
