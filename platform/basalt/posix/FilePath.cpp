#include "basalt/FilePath.h"

#include "basalt/posix/FileState.h"

#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

/// "link/" would name what the link leads to; "link" names the link.
std::string WithoutSlashAtTheEnd(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::error_code Answer(int result, const struct stat& state, FileFacts* facts) {
    if (result != 0)
        return LastError();
    *facts = FactsOf(state);
    return {};
}

} // namespace

std::error_code AskPath(const std::string& path, FileFacts* facts) {
    struct stat state {};
    return Answer(stat(path.c_str(), &state), state, facts);
}

std::error_code AskPathItself(const std::string& path, FileFacts* facts) {
    struct stat state {};
    return Answer(lstat(WithoutSlashAtTheEnd(path).c_str(), &state), state, facts);
}

bool LeadToTheSame(const std::string& one, const std::string& other) {
    std::error_code failure;
    return fs::equivalent(one, other, failure);
}

std::string FolderOf(const std::string& path) {
    std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::string NameOf(const std::string& path) {
    return fs::path(path).filename().string();
}

std::string AbsolutePath(const std::string& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    return (failure ? fs::path(path) : absolute).lexically_normal().string();
}

std::string RealPath(const std::string& path) {
    std::error_code failure;
    return fs::canonical(path, failure).string();
}

std::string LinksFollowed(const std::string& path) {
    std::error_code failure;
    fs::path place(path);
    constexpr int kMaxLinks = 40;
    for (int step = 0; step < kMaxLinks && fs::is_symlink(place, failure); ++step) {
        // Joined to a folder, an absolute path remains itself.
        place = place.parent_path() / fs::read_symlink(place, failure);
    }
    return place.string();
}

std::error_code MovePath(const std::string& target, const std::string& from) {
    std::error_code failure;
    fs::rename(from, target, failure);
    return failure;
}

std::error_code ExchangePaths(const std::string& one, const std::string& other) {
    const bool done = renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
    return done ? std::error_code() : LastError();
}

std::error_code MakeFolderAt(const std::string& path, unsigned permissions) {
    return mkdir(path.c_str(), permissions) == 0 ? std::error_code() : LastError();
}

std::error_code RemoveFileAt(const std::string& path) {
    std::error_code failure;
    fs::remove(path, failure);
    return failure;
}

std::error_code RemoveTreeAt(const std::string& path) {
    std::error_code failure;
    fs::remove_all(WithoutSlashAtTheEnd(path), failure);
    return failure;
}
