#include "workflow/KeptFolder.h"

#include <QStandardPaths>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

void MakePrivate(const fs::path& folder) {
    const fs::path above = folder.parent_path();
    if (above.has_relative_path() && !fs::exists(above))
        MakePrivate(above);
    if (fs::create_directory(folder))
        fs::permissions(folder, fs::perms::owner_all);
}

} // namespace

std::string DefaultKeptFolder() {
    std::error_code failure;
    const char* const given = std::getenv("CORVANE_KEPT");
    if (given != nullptr && *given != '\0')
        return fs::absolute(given, failure).string();
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    return data.isEmpty() ? std::string() : data.toStdString() + "/kept";
}

FolderHandle OpenKeptFolder(const std::string& path) {
    FolderHandle folder(path, FolderHandle::Links::Followed);
    if (folder.Failure() == std::errc::no_such_file_or_directory && !path.empty()) {
        const fs::path place = fs::path(path).lexically_normal();
        MakePrivate(place.has_filename() ? place : place.parent_path());
        folder = FolderHandle(path, FolderHandle::Links::Followed);
    }
    if (!folder.IsOpen())
        throw std::system_error(folder.Failure());
    return folder;
}
