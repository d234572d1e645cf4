#include "PosixCalls.h"

#include "TemporaryFolder.h"

#include <cerrno>
#include <cstring>
#include <random>
#include <string>

namespace {

int Lacking() {
    errno = ENOSYS;
    return -1;
}

} // namespace

int chown(const char* /*path*/, uid_t /*user*/, gid_t /*group*/) {
    return Lacking();
}

pid_t fork() {
    return Lacking();
}

gid_t getegid() {
    return 0;
}

uid_t getuid() {
    return 0;
}

uid_t geteuid() {
    return 0;
}

int getrlimit(int /*what*/, rlimit* /*limit*/) {
    return Lacking();
}

int kill(pid_t /*process*/, int /*signal*/) {
    return Lacking();
}

char* mkdtemp(char* pattern) {
    constexpr int kTries = 100;
    const std::size_t start = std::strlen(pattern) - std::strlen("XXXXXX");
    std::random_device random;
    for (int i = 0; i < kTries; ++i) {
        const std::string ending = std::to_string(100'000 + random() % 900'000);
        std::memcpy(pattern + start, ending.data(), ending.size());
        if (_mkdir(pattern) == 0)
            return pattern;
    }
    return nullptr;
}

int mkdir(const char* path, unsigned /*permissions*/) {
    return _mkdir(path);
}

int mkfifo(const char* /*path*/, unsigned /*permissions*/) {
    return Lacking();
}

int seteuid(uid_t /*user*/) {
    return Lacking();
}

int setenv(const char* name, const char* value, int /*replace*/) {
    return _wputenv_s(Utf8Path(name).c_str(), Utf8Path(value).c_str());
}

int setrlimit(int /*what*/, const rlimit* /*limit*/) {
    return Lacking();
}

int symlink(const char* /*target*/, const char* /*path*/) {
    return Lacking();
}

int unsetenv(const char* name) {
    return _putenv_s(name, "");
}

pid_t waitpid(pid_t /*process*/, int* /*status*/, int /*options*/) {
    return Lacking();
}
