#include "server/BackupArchive.h"

#include "basalt/FolderReader.h"
#include "basalt/InputFile.h"
#include "server/RequestError.h"

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned kDeepest = 100;
constexpr std::size_t kChunk = std::size_t{256} * 1024;
constexpr const char* kInfoName = "info.json";
constexpr const char* kFolderName = "workspaces";
constexpr const char* kInnerName = "workspaces/Workspace.osws";

[[noreturn]] void Unreadable() {
    throw RequestError(500, "The workspace cannot be read.");
}

std::vector<std::string> NamesIn(const FolderHandle& folder) {
    std::vector<std::string> names;
    FolderReader reader(folder);
    FolderEntry entry;
    bStatus status = bOK;
    while ((status = reader.Next(&entry)) == bOK)
        names.emplace_back(entry.name);
    if (status != bERROR_END)
        Unreadable();
    std::sort(names.begin(), names.end());
    return names;
}

std::uint64_t Padded(std::uint64_t size) {
    return size + TarPadding(size);
}

bool SendText(const std::string& text, const ByteSink& sink) {
    return sink(text.data(), text.size());
}

bool SendZeros(std::uint64_t count, const ByteSink& sink) {
    return SendText(std::string(static_cast<std::size_t>(count), '\0'), sink);
}

/// Gives `size` bytes of an open file. @return false when it holds fewer, or the sink wants no more
bool SendBytes(InputFile& file, std::uint64_t size, const ByteSink& sink) {
    std::vector<char> chunk(static_cast<std::size_t>(std::min<std::uint64_t>(size, kChunk)));
    while (size > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, chunk.size()));
        std::size_t got = 0;
        if (!file.Read(chunk.data(), wanted, &got) || got == 0 || !sink(chunk.data(), got))
            return false;
        size -= got;
    }
    return true;
}

} // namespace

BackupArchive::BackupArchive(Workspace::Snapshot snapshot, std::string info)
    : workspace(std::move(snapshot)), info(std::move(info)) {
    AddFolder(workspace.folder, "", kDeepest);
    for (const Item& item : items)
        innerSize += Header(item).size() + Padded(item.size);
}

void BackupArchive::AddFolder(const FolderHandle& folder, const std::string& prefix, unsigned depth) {
    std::vector<Item> subfolders;
    for (const std::string& name : NamesIn(folder)) {
        FileFacts facts;
        if (folder.Ask(name, &facts))
            Unreadable();
        const auto modified = static_cast<std::uint64_t>(std::max<std::int64_t>(facts.modified, 0));
        if (facts.kind == FileKind::File)
            items.push_back({prefix + name, TarKind::File, static_cast<std::uint64_t>(facts.size), modified});
        else if (facts.kind == FileKind::Folder)
            subfolders.push_back({prefix + name, TarKind::Folder, 0, modified});
    }
    for (const Item& subfolder : subfolders)
        AddSubfolder(folder, subfolder, depth);
}

void BackupArchive::AddSubfolder(const FolderHandle& parent, const Item& item, unsigned depth) {
    if (depth == 0)
        throw RequestError(500, "The workspace's folders nest too deep.");
    items.push_back(item);
    const std::string name = item.name.substr(item.name.rfind('/') + 1);
    const FolderHandle folder = parent.OpenFolder(name);
    if (!folder.IsOpen())
        Unreadable();
    AddFolder(folder, item.name + "/", depth - 1);
}

std::string BackupArchive::Header(const Item& item) {
    return TarHeader(item.name, item.kind, item.size, item.modified);
}

std::uint64_t BackupArchive::Size() const {
    return TarHeader(kInfoName, TarKind::File, info.size(), 0).size() + Padded(info.size()) +
           TarHeader(kFolderName, TarKind::Folder, 0, 0).size() +
           TarHeader(kInnerName, TarKind::File, innerSize, 0).size() + Padded(innerSize) + kTarEnd;
}

bool BackupArchive::Send(const ByteSink& sink) const {
    bool wanted = SendText(TarHeader(kInfoName, TarKind::File, info.size(), 0), sink) &&
                  SendText(info, sink) && SendZeros(TarPadding(info.size()), sink) &&
                  SendText(TarHeader(kFolderName, TarKind::Folder, 0, 0), sink) &&
                  SendText(TarHeader(kInnerName, TarKind::File, innerSize, 0), sink);
    for (auto item = items.begin(); wanted && item != items.end(); ++item)
        wanted = SendText(Header(*item), sink) && (item->kind == TarKind::Folder || SendFile(*item, sink));
    return wanted && SendZeros(kTarEnd + TarPadding(innerSize) + kTarEnd, sink);
}

bool BackupArchive::SendFile(const Item& item, const ByteSink& sink) const {
    InputFile file(workspace.folder, item.name);
    FileFacts facts;
    return file.IsOpen() && file.Ask(&facts) && static_cast<std::uint64_t>(facts.size) == item.size &&
           SendBytes(file, item.size, sink) && SendZeros(TarPadding(item.size), sink);
}
