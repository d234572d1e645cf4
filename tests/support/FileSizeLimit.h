#pragma once

#include <csignal>
#include <stdexcept>

#include <sys/resource.h>

/// While the object lives, no file can grow beyond a size: writing then fails as it does on a full disk,
/// without a separate file system.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        if (getrlimit(RLIMIT_FSIZE, &before) != 0)
            throw std::runtime_error("no limit of file sizes");
        const rlimit limit{bytes, before.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            throw std::runtime_error("no limit of file sizes");
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

  private:
    rlimit before{};
    void (*handler)(int);
};
