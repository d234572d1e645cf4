#include "cinder/ConfinedFolder.h"

#include <algorithm>

namespace {

constexpr unsigned kNewFolder = 0777; // less the process's mask

} // namespace

const FolderHandle& ConfinedFolder::Descend(const Parts& parts, std::size_t count, Facts ofFolders) {
    std::size_t common = 0;
    while (common < levels.size() && common < count && levels[common].name == parts[common])
        ++common;
    LeaveDownTo(common);
    for (std::size_t i = common; i < count; ++i) {
        FolderHandle next = (i == 0 ? root : levels.back().folder).OpenFolder(parts[i]);
        if (!next.IsOpen()) {
            none = std::move(next);
            return none;
        }
        Level& level = levels.emplace_back(Level{parts[i], std::move(next), std::nullopt});
        FileFacts facts;
        if (ofFolders == Facts::Kept && !level.folder.Ask(".", &facts))
            level.atLast = facts;
    }
    return count == 0 ? root : levels.back().folder;
}

std::error_code ConfinedFolder::MakeFolder(const Parts& parts, bool* isNew) {
    if (parts.empty() || IsOpen(parts))
        return Enter(parts, parts.size()).Failure();
    const FolderHandle& parent = Descend(parts, parts.size() - 1, Facts::Kept);
    if (!parent.IsOpen())
        return parent.Failure();
    const std::error_code refusal = parent.MakeFolder(parts.back(), kNewFolder);
    if (refusal && refusal != std::errc::file_exists)
        return refusal;
    *isNew = !refusal;
    // A folder without an entry of its own keeps the permissions it was created with.
    return Descend(parts, parts.size(), *isNew ? Facts::Ignored : Facts::Kept).Failure();
}

bool ConfinedFolder::IsOpen(const Parts& parts) const {
    return parts.size() <= levels.size() &&
           std::equal(parts.begin(), parts.end(), levels.begin(),
                      [](const std::string& part, const Level& level) { return part == level.name; });
}

std::error_code ConfinedFolder::MakeFolder(const Parts& parts, const FileFacts& facts, bool* isNew) {
    const std::error_code reason = MakeFolder(parts, isNew);
    if (!reason && !parts.empty())
        levels.back().atLast = facts;
    return reason;
}

std::error_code ConfinedFolder::Leave() {
    LeaveDownTo(0);
    return failure;
}

void ConfinedFolder::LeaveDownTo(std::size_t count) {
    for (; levels.size() > count; levels.pop_back()) {
        const Level& last = levels.back();
        const std::error_code reason = last.atLast ? last.folder.Describe(*last.atLast) : std::error_code();
        if (reason && !failure)
            failure = reason;
    }
}
