#include "Trial.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr long kPage = 4096;
constexpr const char* kLarge = "size=64m";

const FileCall* CallOf(const FileCallReport& report) {
    const bool known = report.at > 0 && report.at <= std::min<long>(report.count, FileCallReport::kMaxCalls);
    return known ? &report.calls[static_cast<std::size_t>(report.at) - 1] : nullptr;
}

/// Whether the call reads the block from which the encoding of a text track is detected; without it the track
/// is read as text as well.
bool DetectsEncoding(const FileCall& call) {
    constexpr long kMaxBlock = 8192;
    const std::string_view place = call.place.data();
    return call.size <= kMaxBlock && (place == "text.trk" || place == "new.trk");
}

const char* NameOf(Fault fault) {
    switch (fault) {
    case Fault::None:
        return "no fault";
    case Fault::NoSpace:
        return "no space";
    case Fault::Quota:
        return "quota";
    case Fault::InputOutput:
        return "I/O error";
    case Fault::DiskDead:
        return "I/O errors from here";
    case Fault::DiskFull:
        return "full disk from here";
    case Fault::Short:
        return "short write";
    case Fault::ShortFull:
        return "short write, then full disk";
    case Fault::Kill:
        return "kill";
    case Fault::TornKill:
        return "kill within the write";
    }
    return "?";
}

/// Mounts a file system that only this process and its children see.
bool Mount(const std::string& folder) {
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("corvane", folder.c_str(), "tmpfs", 0, kLarge) == 0;
}

} // namespace

std::string Describe(const Trial& trial, const FileCallReport& report) {
    if (trial.freePages >= 0)
        return "a disk with " + std::to_string(trial.freePages * kPage / 1024) + " KiB left";
    std::string text = NameOf(trial.fault);
    if (trial.at > 0)
        text += " at call " + std::to_string(trial.at);
    if (const FileCall* const call = CallOf(report))
        text += std::string(" (") + call->name.data() + " " + call->place.data() + ")";
    return text;
}

bool MayBeSurvived(const FileCallReport& report) {
    const FileCall* const call = CallOf(report);
    if (call == nullptr)
        return false;
    const std::string_view name = call->name.data();
    const bool again = std::any_of(report.calls.data(), call, [call](const FileCall& earlier) {
        return earlier.name == call->name && earlier.place == call->place;
    });
    if (name.starts_with("mkdir"))
        return again;
    const bool dialogLists = std::string_view(call->place.data()) == "work";
    if (name == "read" || name == "open to read")
        return report.fault == Fault::InputOutput && (DetectsEncoding(*call) || dialogLists);
    if (name == "getdents64")
        return again || dialogLists;
    if (name == "close")
        return std::string_view(call->place.data()).ends_with(" (deleted)");
    return name.starts_with("unlink") || name == "rmdir" || name.starts_with("rename") ||
           name.starts_with("chmod") || name.starts_with("fchmod") || name == "open nameless" ||
           name.starts_with("copy_file_rang");
}

bool FallsOn(const FileCallReport& report, std::string_view name) {
    const FileCall* const call = CallOf(report);
    return call != nullptr && name == call->name.data();
}

void JudgeAnswer(Problems& problems, const FileCallReport& report, const Answer& answer) {
    const bool succeeded = answer.succeeded;
    if (!succeeded && !answer.shown)
        problems.emplace_back("a failure was not shown");
    if (!report.injected && report.at > 0 && !succeeded)
        problems.emplace_back("failed without a fault");
    if (!report.injected)
        return;
    if (report.fault == Fault::Short && !succeeded)
        problems.emplace_back("a short write ended the operation");
    const bool survivable = answer.lessDone || report.fault == Fault::Short ||
                            (report.fault != Fault::DiskDead && MayBeSurvived(report));
    if (succeeded && !survivable)
        problems.emplace_back("the fault was not reported");
}

TrialDisk::TrialDisk(const std::string& folder, const Trial& trial)
    : folder(folder), freePages(trial.freePages) {
    std::filesystem::create_directory(folder);
    if (freePages >= 0 && !Mount(folder))
        throw std::runtime_error("cannot mount a file system");
}

void TrialDisk::Fill() const {
    if (freePages < 0)
        return;
    struct statvfs state {};
    if (statvfs(folder.c_str(), &state) != 0)
        throw std::runtime_error("cannot read the state of the disk");
    const auto used = static_cast<long>((state.f_blocks - state.f_bfree) * state.f_frsize);
    const std::string size = "size=" + std::to_string(used + freePages * kPage);
    if (mount("corvane", folder.c_str(), "tmpfs", MS_REMOUNT, size.c_str()) != 0)
        throw std::runtime_error("cannot shrink the disk");
}

void TrialDisk::Enlarge() const {
    if (freePages >= 0 && mount("corvane", folder.c_str(), "tmpfs", MS_REMOUNT, kLarge) != 0)
        throw std::runtime_error("cannot enlarge the disk");
}

bool TrialDisk::IsPossible() {
    const pid_t child = fork();
    if (child == 0) {
        std::string folder = "/tmp/corvane-disk-XXXXXX";
        const bool possible = mkdtemp(folder.data()) != nullptr && Mount(folder);
        if (possible)
            umount(folder.c_str());
        rmdir(folder.c_str());
        _exit(possible ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}
