#include "server/Workspace.h"

#include "basalt/FileOwnership.h"
#include "basalt/FolderReader.h"
#include "basalt/RandomName.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fcntl.h>

namespace fs = std::filesystem;

namespace {

/// Removes a folder with all it holds. What cannot be removed stays until the next start, which tries again.
void RemoveTree(const std::string& path) {
    std::error_code remains;
    fs::remove_all(path, remains);
}

bool Rename(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0;
}

bool Exchange(const std::string& one, const std::string& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

/// Exchanges two folders by way of a third name, for file systems that cannot do it in one step.
bool ExchangeBySteps(const std::string& staged, const std::string& target, const std::string& aside) {
    RemoveTree(aside); // what an earlier exchange could not move on
    if (!Rename(target, aside))
        return false;
    if (!Rename(staged, target)) {
        Rename(aside, target); // should this fail too, the next start does it
        return false;
    }
    Rename(aside, staged); // or it is removed before the next exchange, or at the next start
    return true;
}

} // namespace

/// Lives as long as anyone reads from one content of the workspace.
class Workspace::Generation final {
  public:
    Generation() = default;
    Generation(const Generation&) = delete;
    Generation& operator=(const Generation&) = delete;
    ~Generation() {
        if (!replaced.empty())
            RemoveTree(replaced);
    }

    /// Says where the content lies now that another one has taken its place.
    void Replaced(std::string path) { replaced = std::move(path); }

  private:
    std::string replaced;
};

StagedFolder::~StagedFolder() {
    if (!path.empty())
        RemoveTree(path);
}

Workspace::Workspace(const std::string& path) : current(std::make_shared<Generation>()) {
    fs::path place = fs::absolute(path).lexically_normal();
    if (!place.has_filename())
        place = place.parent_path();
    std::error_code missing;
    if (const fs::path real = fs::canonical(place, missing); !missing)
        place = real;
    parent = place.parent_path().string();
    name = place.filename().string();
    target = place.string();
    if (name.empty())
        throw std::runtime_error("cannot serve the root folder");
    Recover();
    if (!fs::is_directory(target, missing))
        throw std::runtime_error("there is no folder " + path);
}

std::string Workspace::Beside(const char* role) const {
    return parent + "/." + name + ".ostra-" + role;
}

void Workspace::Recover() const {
    std::error_code ignored;
    const std::string old = Beside("old");
    const bool missing = fs::symlink_status(target, ignored).type() == fs::file_type::not_found;
    if (missing && fs::is_directory(old, ignored) && !Rename(old, target))
        throw std::runtime_error("cannot put the workspace back from " + old);
    RemoveLeftovers();
}

void Workspace::RemoveLeftovers() const {
    const std::string staged = "." + name + ".ostra-new-";
    const std::string old = "." + name + ".ostra-old";
    std::vector<std::string> leftovers;
    FolderReader reader(parent.c_str());
    for (FolderEntry entry; reader.Next(&entry) == bOK;)
        if (entry.name.starts_with(staged) || entry.name == old)
            leftovers.emplace_back(entry.name);
    for (const std::string& leftover : leftovers)
        RemoveTree(parent + "/" + leftover);
}

Workspace::Snapshot Workspace::Open() const {
    const std::lock_guard lock(mutex);
    FolderHandle folder(target, FolderHandle::Links::Followed);
    if (!folder.IsOpen())
        throw std::runtime_error("The workspace cannot be opened.");
    return {std::move(folder), current};
}

StagedFolder Workspace::Stage() const {
    constexpr unsigned kPrivate = 0700;
    const std::string path = RandomName(Beside("new-"));
    const FolderHandle beside(parent, FolderHandle::Links::Followed);
    if (beside.MakeFolder(path.substr(parent.size() + 1), kPrivate))
        throw std::runtime_error("No folder can be made beside the workspace.");
    return StagedFolder(path);
}

void Workspace::Replace(StagedFolder staged) {
    const std::string tree = staged.Tree();
    // Removing the old content may take a while: it happens after the lock is gone.
    std::shared_ptr<Generation> before;
    const std::lock_guard lock(mutex);
    const auto ownership = FileOwnership::Of(target);
    const bool replaced = ownership && ownership->GiveTo(tree) &&
                          (Exchange(tree, target) || ExchangeBySteps(tree, target, Beside("old")));
    if (!replaced)
        throw std::runtime_error("The workspace cannot be replaced.");
    before = std::exchange(current, std::make_shared<Generation>());
    before->Replaced(staged.Release());
}
