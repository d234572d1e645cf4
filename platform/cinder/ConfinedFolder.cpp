#include "cinder/ConfinedFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Closes a descriptor at the end of a scope.
class Descriptor {
  public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0)
            close(number);
    }
    [[nodiscard]] int Number() const { return number; }

  private:
    int number;
};

} // namespace

ConfinedFolder::ConfinedFolder(const std::string& path) : root(open(path.c_str(), kFolderFlags)) {
}

ConfinedFolder::~ConfinedFolder() {
    if (IsOpen())
        close(root);
}

bool ConfinedFolder::MakeFolder(const std::vector<std::string>& parts, unsigned permissions) const {
    if (parts.empty())
        return IsOpen();
    const Descriptor parent(OpenParent(parts));
    if (parent.Number() < 0)
        return false;
    if (mkdirat(parent.Number(), parts.back().c_str(), permissions | 0700U) == 0)
        return true;
    return Descriptor(openat(parent.Number(), parts.back().c_str(), kFolderFlags)).Number() >= 0;
}

int ConfinedFolder::OpenParent(const std::vector<std::string>& parts) const {
    int folder = fcntl(root, F_DUPFD_CLOEXEC, 0);
    for (std::size_t i = 0; i + 1 < parts.size() && folder >= 0; ++i) {
        const Descriptor above(folder);
        folder = openat(above.Number(), parts[i].c_str(), kFolderFlags);
    }
    return folder;
}
