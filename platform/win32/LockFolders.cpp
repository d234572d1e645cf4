#include "LockFolders.h"

#include "basalt/FolderReader.h"

#include <cstdlib>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kRightsOfOthers = 0077;

std::string UserId() {
    return std::to_string(::geteuid());
}

void AddPrivate(const std::string& path, std::vector<FolderHandle>& folders) {
    FolderHandle folder(path, FolderHandle::Links::Refused);
    struct stat state {};
    if (folder.IsOpen() && ::fstat(folder.Number(), &state) == 0 && state.st_uid == ::geteuid() &&
        (state.st_mode & kRightsOfOthers) == 0)
        folders.push_back(std::move(folder));
}

/// The names in `shared` that may be this user's: `name`, and those that extend it after a dot.
std::set<std::string> NamesOfUser(const std::string& shared, const std::string& name) {
    std::set<std::string> names{name};
    FolderReader reader(shared.c_str());
    for (FolderEntry entry; reader.Next(&entry) == bOK;)
        if (entry.name.starts_with(name + "."))
            names.emplace(entry.name);
    return names;
}

std::vector<FolderHandle> PrivateFoldersIn(const std::string& shared, const std::string& name) {
    std::vector<FolderHandle> folders;
    for (const std::string& found : NamesOfUser(shared, name)) {
        std::string path = shared;
        path += '/';
        path += found;
        AddPrivate(path, folders);
    }
    return folders;
}

/// Makes a folder of this user, with another name if somebody else has taken this one.
void MakePrivateFolder(const std::string& shared, const std::string& name) {
    const std::string plain = shared + "/" + name;
    if (::mkdir(plain.c_str(), 0700) == 0)
        return;
    std::string other = plain + ".XXXXXX";
    static_cast<void>(::mkdtemp(other.data()) != nullptr);
}

/// All of this user's folders: two processes may each have made one at the same moment, and a process that
/// sees both must take both locks.
std::vector<FolderHandle> SharedFolders(const std::string& shared) {
    const std::string name = "corvane-" + UserId();
    std::vector<FolderHandle> folders = PrivateFoldersIn(shared, name);
    if (!folders.empty())
        return folders;
    MakePrivateFolder(shared, name);
    return PrivateFoldersIn(shared, name);
}

} // namespace

std::vector<FolderHandle> OpenLockFolders(const LockFolderRoots& roots) {
    std::vector<FolderHandle> folders;
    const char* const given = std::getenv("CORVANE_INSTANCE");
    if (given != nullptr && *given != '\0') {
        if (*given == '/')
            AddPrivate(given, folders);
        return folders;
    }
    AddPrivate(roots.runtime + "/" + UserId(), folders);
    for (FolderHandle& folder : SharedFolders(roots.shared))
        folders.push_back(std::move(folder));
    return folders;
}

FileLock::State TakeLock(const std::vector<FolderHandle>& folders, const std::string& name,
                         std::vector<FileLock>& locks) {
    for (const FolderHandle& folder : folders) {
        FileLock lock(folder, name);
        if (lock.Result() == FileLock::State::HeldByAnother) {
            locks.clear();
            return FileLock::State::HeldByAnother;
        }
        if (lock.Result() == FileLock::State::Taken)
            locks.push_back(std::move(lock));
    }
    return locks.empty() ? FileLock::State::Failed : FileLock::State::Taken;
}
