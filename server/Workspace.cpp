#include "server/Workspace.h"

#include "basalt/AtomicFile.h"
#include "basalt/FileOwnership.h"
#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"
#include "basalt/InputFile.h"
#include "basalt/RandomName.h"

#include <array>
#include <charconv>
#include <stdexcept>
#include <system_error>

namespace {

/// Removes a folder and its content. What cannot be removed remains until the next start, which tries again.
void RemoveTree(const std::string& path) {
    static_cast<void>(RemoveTreeAt(path));
}

bool IsFolder(const std::string& path) {
    return FolderHandle(path, FolderHandle::Links::Refused).IsOpen();
}

bool Rename(const std::string& from, const std::string& to) {
    return !MovePath(to, from);
}

/// Exchanges two folders through a third name, for file systems that cannot do it in one step.
bool ExchangeBySteps(const std::string& tree, const std::string& target, const std::string& aside) {
    RemoveTree(aside); // left over if an earlier exchange failed at its last step
    if (!Rename(target, aside))
        return false;
    if (!Rename(tree, target)) {
        Rename(aside, target); // if this fails too, the next start does it
        return false;
    }
    Rename(aside, tree); // if this fails, the next start keeps it
    return true;
}

/// The ID of the folder; 0 when it does not exist.
std::uint64_t IdOf(const std::string& path) {
    FileFacts facts;
    return FolderHandle(path, FolderHandle::Links::Refused).Ask(".", &facts) ? 0 : facts.id;
}

/// Records the ID of the unpacked folder before the exchange.
bool WriteMark(const StagedFolder& staged) {
    AtomicFile mark(staged.Mark());
    mark.Write(std::to_string(IdOf(staged.Tree())));
    return mark.Commit();
}

/// The absolute path without links and without a "/" at its end.
std::string PlaceOf(const std::string& path) {
    std::string place = AbsolutePath(path);
    if (NameOf(place).empty())
        place = FolderOf(place);
    const std::string real = RealPath(place);
    return real.empty() ? place : real;
}

/// The recorded ID; 0 when there is none.
std::uint64_t ReadMark(const std::string& path) {
    InputFile file(path.c_str());
    std::array<char, 32> text{};
    std::size_t count = 0;
    std::uint64_t id = 0;
    if (file.IsOpen() && file.Read(text.data(), text.size(), &count))
        std::from_chars(text.data(), text.data() + count, id);
    return id;
}

} // namespace

/// One content of the workspace; lives as long as anyone reads from it.
class Workspace::Generation final {
  public:
    Generation() = default;
    Generation(const Generation&) = delete;
    Generation& operator=(const Generation&) = delete;
    ~Generation() {
        if (!surplus.empty())
            RemoveTree(surplus);
    }

    /// Removes the content, which is at this path, when the object is destroyed.
    void RemoveAtEnd(std::string path) { surplus = std::move(path); }

  private:
    std::string surplus;
};

StagedFolder::~StagedFolder() {
    if (!path.empty())
        RemoveTree(path);
}

Workspace::Workspace(const std::string& path, std::size_t keep)
    : parent(FolderOf(PlaceOf(path))),
      name(NameOf(PlaceOf(path))),
      target(PlaceOf(path)),
      keep(keep),
      kept(parent, "." + name + ".ostra-kept-"),
      current(std::make_shared<Generation>()) {
    if (name.empty())
        throw std::runtime_error("cannot serve the root folder");
    if (!IsFolder(target) && !IsFolder(Beside("old")))
        throw std::runtime_error("there is no folder " + path);
}

std::string Workspace::Beside(const std::string& role) const {
    return parent + "/." + name + ".ostra-" + role;
}

void Workspace::Lock() {
    lock.emplace(FolderHandle(parent, FolderHandle::Links::Followed), "." + name + ".ostra-lock");
    const std::error_code reason = lock->Failure();
    if (lock->Result() == FileLock::State::HeldByAnother)
        throw std::runtime_error("another ostra-server uses " + target);
    // Where nothing can be created beside the workspace, no process can replace it either.
    if (reason && reason != std::errc::permission_denied && reason != std::errc::read_only_file_system)
        throw std::runtime_error("cannot lock " + target + ": " + reason.message());
}

void Workspace::Recover() {
    RecoverOld();
    const std::string prefix = "." + name + ".ostra-new-";
    std::vector<std::string> staged;
    FolderReader reader(parent.c_str());
    for (FolderEntry entry; reader.Next(&entry) == bOK;)
        if (entry.name.starts_with(prefix))
            staged.emplace_back(parent + "/" + std::string(entry.name));
    for (const std::string& path : staged)
        RecoverStaged(path);
    Generations unused;
    TakeSurplus(unused);
}

void Workspace::RecoverOld() {
    const std::string old = Beside("old");
    if (!IsFolder(old))
        return;
    if (IsFolder(target))
        Keep(old, nullptr);
    else if (!Rename(old, target))
        throw std::runtime_error("cannot put the workspace back from " + old);
}

/// Handles the folder of a restore that was interrupted. If the folders had been exchanged, it holds the old
/// workspace, which is kept.
void Workspace::RecoverStaged(const std::string& path) {
    const StagedFolder staged(path);
    const std::uint64_t id = ReadMark(staged.Mark());
    const std::uint64_t idNow = IdOf(staged.Tree());
    if (id != 0 && idNow != 0 && idNow != id)
        Keep(staged.Tree(), nullptr);
}

Workspace::Snapshot Workspace::Open() const {
    const std::lock_guard guard(mutex);
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
        throw std::runtime_error("No folder can be created beside the workspace.");
    return StagedFolder(path);
}

/// Exchanges the workspace with another tree.
bool Workspace::ExchangeWith(const std::string& tree) const {
    const auto ownership = FileOwnership::Of(target);
    return ownership && ownership->GiveTo(tree) &&
           (!ExchangePaths(tree, target) || ExchangeBySteps(tree, target, Beside("old")));
}

bool Workspace::Replace(StagedFolder staged) {
    Generations unused; // removing them may take a while, so that happens after the mutex is released
    const std::lock_guard guard(mutex);
    if (!WriteMark(staged) || !ExchangeWith(staged.Tree()))
        throw std::runtime_error("The workspace cannot be replaced.");
    auto before = std::exchange(current, std::make_shared<Generation>());
    const bool isKept = !Keep(staged.Tree(), before).empty();
    if (!isKept)
        before->RemoveAtEnd(staged.Release()); // a session may still read from it
    unused.push_back(std::move(before));
    TakeSurplus(unused);
    return isKept;
}

std::string Workspace::PutBack(const std::string& time) {
    const std::lock_guard guard(mutex);
    const std::string tree = kept.PathOf(time);
    if (time.find('/') != std::string::npos || !IsFolder(tree))
        throw std::runtime_error("there is no kept workspace " + time);
    if (!ExchangeWith(tree))
        throw std::runtime_error("the workspace cannot be replaced");
    const std::string replaced = Keep(tree, nullptr);
    return replaced.empty() ? time : replaced;
}

/// @return the time under which the tree is kept; empty when it cannot be moved
std::string Workspace::Keep(const std::string& tree, std::shared_ptr<Generation> generation) {
    std::string time = kept.NewTime();
    if (!Rename(tree, kept.PathOf(time)))
        return {};
    if (generation)
        keptGenerations.emplace(time, std::move(generation));
    return time;
}

/// Collects the kept contents beyond `keep`, oldest last, for removal.
void Workspace::TakeSurplus(Generations& unused) {
    const std::vector<std::string> times = kept.Times();
    for (std::size_t i = keep; i < times.size(); ++i) {
        const auto user = keptGenerations.extract(times[i]);
        unused.push_back(user ? user.mapped() : std::make_shared<Generation>());
        unused.back()->RemoveAtEnd(kept.PathOf(times[i]));
    }
}
