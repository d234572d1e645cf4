#include "workflow/KeptCopies.h"

#include "basalt/AtomicFile.h"
#include "basalt/FolderReader.h"
#include "basalt/HiddenFile.h"
#include "basalt/RandomName.h"
#include "basalt/bFile.h"
#include "document/formats/Converter.h"
#include "log/Log.h"
#include "workflow/KeptFolder.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace {

/// A copy that is being made: an empty file with a hidden name, private to the user, which is removed with
/// the object unless it gets the copy's name.
class HiddenPlace {
  public:
    explicit HiddenPlace(const FolderHandle& opened) : folder(opened), hidden(RandomName(".corvane-")) {
        constexpr unsigned kPrivate = 0600;
        HiddenFile file(folder, kPrivate);
        if (!file.IsOpen() || !file.Keep(hidden))
            throw std::system_error(file.Failure());
    }
    HiddenPlace(const HiddenPlace&) = delete;
    HiddenPlace& operator=(const HiddenPlace&) = delete;
    ~HiddenPlace() { static_cast<void>(folder.RemoveFile(hidden)); }

    [[nodiscard]] const std::string& Name() const { return hidden; }

    /// Gives the file the first free name. @return that name @throws std::system_error
    std::string GiveName(const KeptName& name) {
        constexpr unsigned kMaxNumber = 10'000;
        std::error_code failure;
        for (unsigned number = 1; number <= kMaxNumber; ++number) {
            std::string text = name.Text(number);
            failure = folder.RenameToFree(hidden, text);
            if (!failure)
                return text;
            if (failure != std::errc::file_exists)
                break;
        }
        throw std::system_error(failure);
    }

  private:
    const FolderHandle& folder;
    const std::string hidden;
};

struct KeptFile {
    std::string name;
    FileFacts facts;

    /// Copies of the same second are ordered by when they were written.
    [[nodiscard]] bool IsNewerThan(const KeptFile& other) const {
        const auto order = [](const KeptFile& file) {
            return std::make_tuple(KeptName::TimeOf(file.name), file.facts.modified,
                                   file.facts.modifiedFraction, std::string_view(file.name));
        };
        return order(*this) > order(other);
    }
};

/// All kept copies, the newest first. @throws std::system_error when the folder cannot be read
std::vector<KeptFile> KeptFiles(const FolderHandle& folder) {
    std::vector<KeptFile> files;
    FolderReader reader(folder);
    for (FolderEntry entry; reader.Next(&entry) == bOK;) {
        KeptFile file{std::string(entry.name), {}};
        // Another editor may have removed it in the meantime.
        if (entry.kind == FileKind::File && KeptName::IsOne(file.name) && !folder.Ask(file.name, &file.facts))
            files.push_back(std::move(file));
    }
    if (reader.Failure())
        throw std::system_error(reader.Failure());
    std::sort(files.begin(), files.end(),
              [](const KeptFile& one, const KeptFile& other) { return one.IsNewerThan(other); });
    return files;
}

void RemoveCopy(const FolderHandle& folder, const std::string& name) {
    const std::error_code failure = folder.RemoveFile(name);
    if (!failure) {
        LOG_LINE(INFO) << "Removed the kept copy " << name;
    } else if (failure != std::errc::no_such_file_or_directory) { // another editor removed it first
        LOG_LINE(ERROR) << "Failed to remove the kept copy " << name << ": " << failure.message();
    }
}

} // namespace

KeptCopies::KeptCopies(std::string folder)
    : KeptCopies(std::move(folder), Limits(), [] { return std::time(nullptr); }) {
}

KeptCopies::KeptCopies(std::string folder, Limits limits, Clock clock)
    : folder(std::move(folder)), limits(limits), clock(std::move(clock)) {
}

std::optional<std::string> KeptCopies::KeepFile(const std::string& path, KeptReason reason) {
    return Keep(path, reason, {}, [&path](const std::string& place) {
        if (const std::error_code failure = CopyAtomically(path, place))
            throw std::system_error(failure);
    });
}

std::optional<std::string> KeptCopies::KeepWritten(const std::string& original, KeptReason reason,
                                                   const Writer& writer, std::string_view extension) {
    return Keep(original, reason, extension, [&writer](const std::string& place) {
        if (!writer(place))
            throw std::runtime_error("its content could not be written");
    });
}

std::optional<std::string> KeptCopies::Keep(const std::string& original, KeptReason reason,
                                            std::string_view extension, const Write& write) noexcept {
    try {
        KeptName name(clock(), original, reason);
        if (!extension.empty())
            name.SetExtension(extension);
        const std::string kept = Place(name, write);
        LOG_LINE(INFO) << "Kept " << kept;
        return folder + "/" + kept;
    } catch (const std::exception& failure) {
        LogNotKept(original, reason, failure.what());
    } catch (...) {
        LogNotKept(original, reason, "unknown exception");
    }
    return std::nullopt;
}

void KeptCopies::LogNotKept(const std::string& original, KeptReason reason, const char* why) const noexcept {
    try {
        LOG_LINE(ERROR) << "Failed to keep " << KeptName(clock(), original, reason).Text() << " in " << folder
                        << ": " << why;
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no memory even for the line
    }
}

/// @return the name of the new copy @throws std::exception when there is none
std::string KeptCopies::Place(const KeptName& name, const Write& write) const {
    const FolderHandle opened = OpenKeptFolder(folder);
    HiddenPlace place(opened);
    write(folder + "/" + place.Name());
    std::string kept = place.GiveName(name);
    if (const std::error_code failure = opened.Sync())
        throw std::system_error(failure);
    RemoveOldest(opened, kept);
    return kept;
}

void KeptCopies::RemoveOldest(const FolderHandle& opened, const std::string& newest) const try {
    std::vector<KeptFile> files = KeptFiles(opened);
    // The new copy is the newest even if the clock was set back.
    std::stable_partition(files.begin(), files.end(),
                          [&newest](const KeptFile& file) { return file.name == newest; });
    std::uint64_t bytes = 0;
    std::size_t stays = 0;
    for (; stays < files.size() && (stays == 0 || stays < limits.copies); ++stays) {
        bytes += static_cast<std::uint64_t>(files[stays].facts.size);
        if (stays > 0 && bytes > limits.bytes)
            break;
    }
    for (std::size_t old = stays; old < files.size(); ++old)
        RemoveCopy(opened, files[old].name);
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Failed to remove old copies in " << folder << ": " << failure.what();
}

bool KeepTextOriginal(KeptCopies& copies, const std::string& target) {
    if (bFile_Exists(target.c_str()) == 0)
        return true;
    const std::optional<TrackEncoding> encoding = EncodingOf(target);
    if (!encoding) {
        LOG_LINE(ERROR) << "Failed to keep " << target << ": its encoding cannot be read";
    }
    if (encoding != TrackEncoding::Text)
        return encoding.has_value();
    return copies.KeepFile(target, KeptReason::TextOriginal).has_value();
}
