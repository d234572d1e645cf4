#include "basalt/FileReplacement.h"

#include "basalt/AtomicFile.h"
#include "basalt/FileOwnership.h"
#include "basalt/FilePath.h"
#include "basalt/InputFile.h"

namespace {

/// Whether `from` can have the place, the owner and the permissions of `target` by being renamed to it.
bool MoveTo(const std::string& target, const std::string& from) {
    const auto old = FileOwnership::Of(target);
    const auto fresh = FileOwnership::Of(from);
    if (!old || !fresh || !fresh->BelongsLike(*old) || !old->GiveTo(from))
        return false;
    return !MovePath(target, from);
}

} // namespace

std::error_code CopyAtomically(const std::string& from, const std::string& target) {
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

std::error_code ReplaceAtomically(const std::string& from, const std::string& target) {
    FileFacts facts;
    if (const std::error_code failure = AskPath(target, &facts))
        return failure;
    if (facts.kind != FileKind::File)
        return std::make_error_code(std::errc::not_supported);
    const std::string place = LinksFollowed(target);
    if (!MayWrite(place))
        return std::make_error_code(std::errc::permission_denied);
    if (!MoveTo(place, from))
        return CopyAtomically(from, place);
    return FolderHandle(FolderOf(place), FolderHandle::Links::Followed).Sync();
}
