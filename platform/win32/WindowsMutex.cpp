#include "windows.h"

#include "LockFolders.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kMaxNameLength = 100;

thread_local DWORD lastError = ERROR_SUCCESS;

/// What a HANDLE points to: the locks if this handle created the mutex, otherwise none. A lock ends with its
/// object.
struct NamedMutex {
    std::vector<FileLock> locks;
};

/// The file name for a mutex; empty for a name that is not supported here.
std::string LockName(LPCWSTR name) {
    std::string file;
    for (const wchar_t letter : std::wstring_view(name)) {
        const bool plain = (letter >= L'a' && letter <= L'z') || (letter >= L'A' && letter <= L'Z') ||
                           (letter >= L'0' && letter <= L'9') || letter == L'-' || letter == L'_' ||
                           (letter == L'.' && !file.empty());
        if (!plain || file.size() == kMaxNameLength)
            return {};
        file += static_cast<char>(letter);
    }
    return file.empty() ? file : file + ".lock";
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
    auto mutex = std::make_unique<NamedMutex>();
    const FileLock::State result = TakeLock(OpenLockFolders(), lock, mutex->locks);
    if (result == FileLock::State::Failed)
        return Fail(ERROR_ACCESS_DENIED);
    lastError = result == FileLock::State::Taken ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS;
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
