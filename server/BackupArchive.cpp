#include "server/BackupArchive.h"

#include "server/RequestError.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr unsigned kDeepest = 100;
constexpr std::size_t kChunk = std::size_t{256} * 1024;
constexpr const char* kInfoName = "info.json";
constexpr const char* kFolderName = "workspaces";
constexpr const char* kInnerName = "workspaces/Workspace.osws";

[[noreturn]] void Unreadable() {
    throw RequestError(500, "The workspace cannot be read.");
}

std::vector<std::string> NamesIn(int folder) {
    FileDescriptor own(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto close = [](DIR* list) { closedir(list); };
    const std::unique_ptr<DIR, decltype(close)> entries(own.IsOpen() ? fdopendir(own.Number()) : nullptr);
    if (!entries)
        Unreadable();
    (void)own.Release(); // closedir closes it
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = readdir(entries.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(std::move(name));
        errno = 0;
    }
    if (errno != 0) // the list ends as if it were whole
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
bool SendBytes(int file, std::uint64_t size, const ByteSink& sink) {
    std::vector<char> chunk(static_cast<std::size_t>(std::min<std::uint64_t>(size, kChunk)));
    while (size > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, chunk.size()));
        const ssize_t got = read(file, chunk.data(), wanted);
        if (got <= 0 || !sink(chunk.data(), static_cast<std::size_t>(got)))
            return false;
        size -= static_cast<std::uint64_t>(got);
    }
    return true;
}

} // namespace

BackupArchive::BackupArchive(Workspace::Snapshot snapshot, std::string info)
    : workspace(std::move(snapshot)), info(std::move(info)) {
    AddFolder(workspace.folder.Number(), "", kDeepest);
    for (const Item& item : items)
        innerSize += Header(item).size() + Padded(item.size);
}

void BackupArchive::AddFolder(int folder, const std::string& prefix, unsigned depth) {
    std::vector<Item> subfolders;
    for (const std::string& name : NamesIn(folder)) {
        struct stat status {};
        if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            Unreadable();
        const auto modified = static_cast<std::uint64_t>(std::max<time_t>(status.st_mtime, 0));
        if (S_ISREG(status.st_mode))
            items.push_back(
                {prefix + name, TarKind::File, static_cast<std::uint64_t>(status.st_size), modified});
        else if (S_ISDIR(status.st_mode))
            subfolders.push_back({prefix + name, TarKind::Folder, 0, modified});
    }
    for (const Item& subfolder : subfolders)
        AddSubfolder(folder, subfolder, depth);
}

void BackupArchive::AddSubfolder(int parent, const Item& item, unsigned depth) {
    if (depth == 0)
        throw RequestError(500, "The workspace's folders nest too deep.");
    items.push_back(item);
    const std::string name = item.name.substr(item.name.rfind('/') + 1);
    const FileDescriptor folder(
        openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.IsOpen())
        Unreadable();
    AddFolder(folder.Number(), item.name + "/", depth - 1);
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
    const FileDescriptor file(
        openat(workspace.folder.Number(), item.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    return file.IsOpen() && fstat(file.Number(), &status) == 0 && S_ISREG(status.st_mode) &&
           static_cast<std::uint64_t>(status.st_size) == item.size &&
           SendBytes(file.Number(), item.size, sink) && SendZeros(TarPadding(item.size), sink);
}
