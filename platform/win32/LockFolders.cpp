#include "LockFolders.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kRightsOfOthers = 0077;

std::string UserId() {
    return std::to_string(::geteuid());
}

/// Opens a folder that is this user's alone.
Descriptor OpenPrivate(const std::string& path) {
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat state {};
    if (!folder.IsOpen() || ::fstat(folder.Number(), &state) != 0 || state.st_uid != ::geteuid() ||
        (state.st_mode & kRightsOfOthers) != 0)
        return Descriptor(-1);
    return folder;
}

void AddPrivate(const std::string& path, std::vector<Descriptor>& folders) {
    Descriptor folder = OpenPrivate(path);
    if (folder.IsOpen())
        folders.push_back(std::move(folder));
}

/// The names in `shared` that may be this user's: `name`, and those that only add to it after a point.
std::set<std::string> NamesOfUser(const std::string& shared, const std::string& name) {
    std::set<std::string> names{name};
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(shared.c_str()), ::closedir);
    const dirent* entry = nullptr;
    while (folder && (entry = ::readdir(folder.get())) != nullptr) {
        const std::string found = entry->d_name;
        if (found.rfind(name + ".", 0) == 0)
            names.insert(found);
    }
    return names;
}

std::vector<Descriptor> PrivateFoldersIn(const std::string& shared, const std::string& name) {
    std::vector<Descriptor> folders;
    for (const std::string& found : NamesOfUser(shared, name)) {
        std::string path = shared;
        path += '/';
        path += found;
        AddPrivate(path, folders);
    }
    return folders;
}

/// Makes a folder of this user, under another name where somebody else's is in the way.
void MakePrivateFolder(const std::string& shared, const std::string& name) {
    const std::string plain = shared + "/" + name;
    if (::mkdir(plain.c_str(), 0700) == 0)
        return;
    std::string other = plain + ".XXXXXX";
    static_cast<void>(::mkdtemp(other.data()) != nullptr);
}

/// All of this user's: two processes may each have made one at the same moment, and whoever sees both must
/// take both locks.
std::vector<Descriptor> SharedFolders(const std::string& shared) {
    const std::string name = "corvane-" + UserId();
    std::vector<Descriptor> folders = PrivateFoldersIn(shared, name);
    if (!folders.empty())
        return folders;
    MakePrivateFolder(shared, name);
    return PrivateFoldersIn(shared, name);
}

/// Opens or makes the lock file. The sticky bit keeps cleaners of old files away from it.
Descriptor OpenLockFile(const Descriptor& folder, const std::string& name) {
    Descriptor file(::openat(folder.Number(), name.c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat state {};
    if (!file.IsOpen() || ::fstat(file.Number(), &state) != 0 || !S_ISREG(state.st_mode) ||
        state.st_uid != ::geteuid())
        return Descriptor(-1);
    ::fchmod(file.Number(), S_ISVTX | 0600);
    return file;
}

LockResult Lock(const Descriptor& file) {
    int result = -1;
    do {
        result = ::flock(file.Number(), LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return LockResult::Taken;
    return errno == EWOULDBLOCK ? LockResult::HeldByAnother : LockResult::NoPlace;
}

} // namespace

Descriptor::~Descriptor() {
    if (number >= 0)
        ::close(number);
}

std::vector<Descriptor> OpenLockFolders(const LockFolderRoots& roots) {
    std::vector<Descriptor> folders;
    const char* const given = std::getenv("CORVANE_INSTANCE");
    if (given != nullptr && *given != '\0') {
        if (*given == '/')
            AddPrivate(given, folders);
        return folders;
    }
    AddPrivate(roots.runtime + "/" + UserId(), folders);
    for (Descriptor& folder : SharedFolders(roots.shared))
        folders.push_back(std::move(folder));
    return folders;
}

LockResult TakeLock(const std::vector<Descriptor>& folders, const std::string& name,
                    std::vector<Descriptor>& locks) {
    for (const Descriptor& folder : folders) {
        Descriptor file = OpenLockFile(folder, name);
        const LockResult result = file.IsOpen() ? Lock(file) : LockResult::NoPlace;
        if (result == LockResult::Taken)
            locks.push_back(std::move(file));
        if (result == LockResult::HeldByAnother) {
            locks.clear();
            return result;
        }
    }
    return locks.empty() ? LockResult::NoPlace : LockResult::Taken;
}
