#include "FuzzFolder.h"

#include "Check.h"
#include "log/Log.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

FuzzFolder::FuzzFolder() {
    std::error_code failure;
    const fs::path memory = "/dev/shm";
    const fs::path parent = fs::is_directory(memory, failure) ? memory : fs::temp_directory_path();
    path = (parent / ("corvane-fuzz-" + std::to_string(getpid()))).string();
    fs::remove_all(path, failure); // left over by an earlier process with this number
    Check(mkdir(path.c_str(), 0700) == 0, "a folder for the fuzzer can be made");
    fs::current_path(path);
    Output2FILE::Target() = std::fopen("/dev/null", "w");
}

FuzzFolder::~FuzzFolder() {
    std::error_code failure;
    fs::current_path("/", failure);
    fs::remove_all(path, failure);
}

Tree TreeOf(const std::string& folder) {
    constexpr unsigned kPermissionBits = 07777;
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat status {};
        if (lstat(entry.path().c_str(), &status) != 0)
            Broken("every entry of a folder can be inspected");
        const std::string permissions = std::to_string(status.st_mode & kPermissionBits);
        std::string& what = tree[entry.path().lexically_relative(folder).string()];
        if (S_ISREG(status.st_mode))
            what = "file " + permissions + " " + ContentOf(entry.path().string());
        else if (S_ISDIR(status.st_mode))
            what = "folder " + permissions;
        else if (S_ISLNK(status.st_mode))
            what = "link " + fs::read_symlink(entry.path()).string();
        else
            what = "other";
    }
    return tree;
}

void Store(const std::string& path, const void* bytes, std::size_t size) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    Check(file >= 0 && write(file, bytes, size) == static_cast<ssize_t>(size), "the input can be stored");
    close(file);
}

void Store(const std::string& path, const std::string& content) {
    Store(path, content.data(), content.size());
}

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int FreeDescriptor() {
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(descriptor);
    return descriptor;
}
