#include "window/FileReplacement.h"

#include "basalt/AtomicFile.h"

#include <array>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// For the user that the process acts as, who owns what it makes.
bool MayWrite(const char* path) {
    return faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) == 0;
}

/// Whether the file `place` would keep its owner and its group if `from` were renamed to it.
bool BelongAlike(const char* from, const char* place) {
    struct stat fresh {};
    struct stat old {};
    return stat(from, &fresh) == 0 && stat(place, &old) == 0 && fresh.st_uid == old.st_uid &&
           fresh.st_gid == old.st_gid;
}

bool CopyWhole(const std::string& from, const std::string& target) {
    constexpr std::size_t kPiece = 65536;
    std::ifstream source(from, std::ios::binary);
    AtomicFile copy(target);
    if (!source.is_open() || !copy.IsOpen())
        return false;
    std::array<char, kPiece> piece{};
    while (source.read(piece.data(), piece.size()) || source.gcount() > 0)
        copy.Write(piece.data(), static_cast<std::size_t>(source.gcount()));
    return source.eof() && copy.Commit();
}

} // namespace

bool ReplaceFile(const std::string& from, const std::string& target) {
    std::error_code failure;
    const std::filesystem::path place = std::filesystem::canonical(target, failure);
    if (failure || !std::filesystem::is_regular_file(place, failure) || !MayWrite(place.c_str()))
        return false;
    if (!BelongAlike(from.c_str(), place.c_str()))
        return CopyWhole(from, place.string());
    const std::filesystem::perms permissions = std::filesystem::status(place, failure).permissions();
    if (!failure)
        std::filesystem::permissions(from, permissions, failure);
    if (!failure)
        std::filesystem::rename(from, place, failure);
    if (!failure)
        return SyncFolderOf(place.string());
    return CopyWhole(from, place.string());
}
