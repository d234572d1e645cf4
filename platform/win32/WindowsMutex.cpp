#include "windows.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::size_t kLongestName = 100;

thread_local DWORD lastError = ERROR_SUCCESS;

class Descriptor final {
  public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        if (number >= 0)
            ::close(number);
    }

    [[nodiscard]] bool IsOpen() const { return number >= 0; }
    [[nodiscard]] int Number() const { return number; }

  private:
    int number;
};

/// What a HANDLE points to. The lock ends with the descriptor.
struct NamedMutex {
    Descriptor file;
};

/// The file name for a mutex; empty when the name is not one of those known here.
std::string LockName(LPCWSTR name) {
    std::string file;
    for (const wchar_t letter : std::wstring_view(name)) {
        const bool plain = (letter >= L'a' && letter <= L'z') || (letter >= L'A' && letter <= L'Z') ||
                           (letter >= L'0' && letter <= L'9') || letter == L'-' || letter == L'_' ||
                           (letter == L'.' && !file.empty());
        if (!plain || file.size() == kLongestName)
            return {};
        file += static_cast<char>(letter);
    }
    return file.empty() ? file : file + ".lock";
}

/// Opens a directory that is this user's alone; others could put a lock or a link of theirs into any other.
Descriptor OpenPrivate(const std::string& path) {
    Descriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat state {};
    if (!directory.IsOpen() || ::fstat(directory.Number(), &state) != 0 || state.st_uid != ::geteuid() ||
        (state.st_mode & 0077) != 0)
        return Descriptor(-1);
    return directory;
}

Descriptor OpenRuntimeDirectory() {
    const std::string user = std::to_string(::geteuid());
    const char* const given = std::getenv("XDG_RUNTIME_DIR");
    if (given != nullptr && *given == '/') {
        Descriptor directory = OpenPrivate(given);
        if (directory.IsOpen())
            return directory;
    }
    Descriptor usual = OpenPrivate("/run/user/" + user);
    if (usual.IsOpen())
        return usual;
    const std::string own = "/tmp/corvane-" + user;
    ::mkdir(own.c_str(), 0700);
    return OpenPrivate(own);
}

/// Opens or makes the lock file. The sticky bit keeps cleaners of old files away from it.
Descriptor OpenLockFile(const Descriptor& directory, const std::string& name) {
    Descriptor file(::openat(directory.Number(), name.c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat state {};
    if (!file.IsOpen() || ::fstat(file.Number(), &state) != 0 || !S_ISREG(state.st_mode) ||
        state.st_uid != ::geteuid())
        return Descriptor(-1);
    ::fchmod(file.Number(), S_ISVTX | 0600);
    return file;
}

/// ERROR_SUCCESS for the one who gets the lock.
DWORD Lock(const Descriptor& file) {
    int result = -1;
    do {
        result = ::flock(file.Number(), LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return ERROR_SUCCESS;
    return errno == EWOULDBLOCK ? ERROR_ALREADY_EXISTS : ERROR_ACCESS_DENIED;
}

HANDLE Fail(DWORD error) {
    lastError = error;
    return nullptr;
}

} // namespace

DWORD GetLastError() {
    return lastError;
}

HANDLE CreateMutexW(const SECURITY_ATTRIBUTES* security, BOOL owned, LPCWSTR name) {
    if (security != nullptr || owned != FALSE || name == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::string lock = LockName(name);
    if (lock.empty())
        return Fail(ERROR_INVALID_NAME);
    const Descriptor directory = OpenRuntimeDirectory();
    if (!directory.IsOpen())
        return Fail(ERROR_ACCESS_DENIED);
    Descriptor file = OpenLockFile(directory, lock);
    if (!file.IsOpen())
        return Fail(ERROR_ACCESS_DENIED);
    const DWORD result = Lock(file);
    if (result == ERROR_ACCESS_DENIED)
        return Fail(result);
    auto mutex = std::make_unique<NamedMutex>(NamedMutex{std::move(file)});
    lastError = result;
    return mutex.release();
}

BOOL CloseHandle(HANDLE handle) {
    if (handle == nullptr) {
        lastError = ERROR_INVALID_HANDLE;
        return FALSE;
    }
    const std::unique_ptr<NamedMutex> mutex(static_cast<NamedMutex*>(handle));
    return TRUE;
}
