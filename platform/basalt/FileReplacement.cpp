#include "basalt/FileReplacement.h"

#include "basalt/AtomicFile.h"
#include "basalt/FileOwnership.h"
#include "basalt/InputFile.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// Whether `from` can have the place, the owner and the permissions of `target` by being renamed to it.
bool MoveTo(const std::string& target, const std::string& from) {
    const auto old = FileOwnership::Of(target);
    const auto fresh = FileOwnership::Of(from);
    if (!old || !fresh || !fresh->BelongsLike(*old) || !old->GiveTo(from))
        return false;
    std::error_code failure;
    fs::rename(from, target, failure);
    return !failure;
}

} // namespace

std::error_code CopyFile(const std::string& from, const std::string& target) {
    InputFile source(from.c_str());
    if (!source.IsOpen())
        return source.Failure();
    AtomicFile copy(target, 0);
    const std::int64_t size = copy.Append(source);
    FileFacts facts;
    if (!source.Ask(&facts))
        return source.Failure();
    if (!copy.HasFailed() && size != facts.size)
        return std::make_error_code(std::errc::resource_unavailable_try_again);
    return copy.Commit() ? std::error_code() : copy.Failure();
}

std::error_code ReplaceFile(const std::string& from, const std::string& target) {
    std::error_code failure;
    const fs::path place = fs::canonical(target, failure);
    if (failure)
        return failure;
    if (!fs::is_regular_file(place, failure))
        return failure ? failure : std::make_error_code(std::errc::not_supported);
    if (!MayWrite(place.string()))
        return std::make_error_code(std::errc::permission_denied);
    if (!MoveTo(place.string(), from))
        return CopyFile(from, place.string());
    return FolderHandle(place.parent_path().string(), FolderHandle::Links::Followed).Sync();
}
