#include "workflow/KeptFolder.h"

#include "basalt/FilePath.h"
#include "basalt/HiddenFile.h"
#include "basalt/InputFile.h"

#include <QStandardPaths>

#include <system_error>

namespace {

bool IsMissing(const std::error_code& failure) {
    return failure == std::errc::no_such_file_or_directory;
}

} // namespace

std::string DefaultKeptFolder() {
    const QString given = qEnvironmentVariable("CORVANE_KEPT");
    if (!given.isEmpty())
        return AbsolutePath(given.toStdString());
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    return data.isEmpty() ? std::string() : data.toStdString() + "/kept";
}

FolderHandle OpenKeptFolder(const std::string& path) {
    FolderHandle folder(path, FolderHandle::Links::Followed);
    if (IsMissing(folder.Failure()) && !path.empty()) {
        constexpr unsigned kPrivate = 0700;
        const std::error_code failure = MakeFoldersAt(AbsolutePath(path), kPrivate);
        folder = FolderHandle(path, FolderHandle::Links::Followed);
        if (failure && !folder.IsOpen())
            throw std::system_error(failure);
    }
    if (!folder.IsOpen())
        throw std::system_error(folder.Failure());
    return folder;
}

std::optional<FolderHandle> OpenExistingKeptFolder(const std::string& path) {
    FolderHandle folder(path, FolderHandle::Links::Followed);
    if (IsMissing(folder.Failure()))
        return std::nullopt;
    if (!folder.IsOpen())
        throw std::system_error(folder.Failure());
    return folder;
}

std::optional<std::string> ReadKeptFile(const FolderHandle& folder, const std::string& name) {
    InputFile file(folder, name);
    if (IsMissing(file.Failure()))
        return std::nullopt;
    FileFacts facts;
    if (!file.IsOpen() || !file.Ask(&facts))
        throw std::system_error(file.Failure());
    std::string content(static_cast<std::size_t>(facts.size), '\0');
    std::size_t count = 0;
    if (!file.Read(content.data(), content.size(), &count))
        throw std::system_error(file.Failure());
    content.resize(count);
    return content;
}

void RemoveKeptFile(const FolderHandle& folder, const std::string& name) {
    const std::error_code failure = folder.RemoveFile(name);
    if (failure && !IsMissing(failure))
        throw std::system_error(failure);
}

void WriteKeptFile(const FolderHandle& folder, const std::string& name, Durability durability,
                   const WriteContent& writeContent) {
    constexpr unsigned kPrivate = 0600;
    HiddenFile file(folder, kPrivate);
    const auto require = [&file](bool succeeded) {
        if (!succeeded)
            throw std::system_error(file.Failure());
    };
    require(file.IsOpen());
    writeContent([&](const void* data, std::size_t size) { require(file.Write(data, size)); });
    const bool durable = durability == Durability::OfPower;
    require((!durable || file.Sync()) && file.Keep(name));
    if (const std::error_code failure = durable ? folder.Sync() : std::error_code())
        throw std::system_error(failure);
}
