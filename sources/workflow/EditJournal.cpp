#include "workflow/EditJournal.h"

#include "basalt/FilePath.h"
#include "basalt/FolderReader.h"
#include "basalt/RandomName.h"
#include "basalt/bFile.h"
#include "document/formats/Converter.h"
#include "document/formats/CsvPaths.h"
#include "log/Log.h"
#include "workflow/KeptCopies.h"
#include "workflow/KeptFolder.h"
#include "workflow/KeptRecord.h"

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

namespace {

constexpr std::string_view kMagic = "CorvEdit";
constexpr std::uint32_t kVersion = 1;
constexpr std::string_view kPrefix = ".journal-";
constexpr std::string_view kLockEnding = ".lock";

std::string LockOf(const std::string& journal) {
    return journal + std::string(kLockEnding);
}

/// Whether RandomName can have made this name from the prefix.
bool IsJournalName(std::string_view name) {
    constexpr std::size_t kLetters = 6;
    if (name.size() != kPrefix.size() + kLetters || !name.starts_with(kPrefix))
        return false;
    return name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789", kPrefix.size()) ==
           std::string_view::npos;
}

/// The names of all journals in a folder, even of those with only a lock left.
std::set<std::string> JournalsIn(const FolderHandle& folder) {
    std::set<std::string> names;
    FolderReader reader(folder);
    for (FolderEntry entry; reader.Next(&entry) == bOK;) {
        std::string_view name = entry.name;
        if (name.ends_with(kLockEnding))
            name.remove_suffix(kLockEnding.size());
        if (entry.kind == FileKind::File && IsJournalName(name))
            names.emplace(name);
    }
    if (reader.Failure())
        throw std::system_error(reader.Failure());
    return names;
}

bool HasMap(const std::string& track, const QSize& size) {
    TrackInfo info;
    return bFile_Exists(track.c_str()) != 0 && CreateConverter(track)->ReadInfo(track, info) == 0 &&
           QSize(info.width, info.height) == size;
}

} // namespace

/// What a journal holds.
struct EditJournal::Entry {
    std::string track; ///< an absolute path
    QSize map;
    std::vector<TrackPath> paths;

    static Entry Read(std::string content) {
        KeptRecordReader record(std::move(content), kMagic, kVersion);
        Entry entry;
        entry.track = record.ReadText();
        entry.map.setWidth(record.Read<std::int32_t>());
        entry.map.setHeight(record.Read<std::int32_t>());
        for (auto left = record.Read<std::uint64_t>(); left > 0; --left) {
            TrackPath& path = entry.paths.emplace_back();
            path.points = record.ReadPoints();
            for (std::vector<int>* const list : {&path.methods, &path.lengths, &path.widths, &path.spaces}) {
                *list = record.ReadNumbers();
                if (list->size() != path.points.size())
                    throw std::runtime_error("it holds a path whose lists are not parallel");
            }
        }
        record.ExpectEnd();
        return entry;
    }

    static void Write(KeptRecordWriter record, const std::string& track, const QSize& map,
                      const std::vector<TrackPath>& paths) {
        record.AddText(track);
        record.Add(std::int32_t{map.width()});
        record.Add(std::int32_t{map.height()});
        record.Add(std::uint64_t{paths.size()});
        for (const TrackPath& path : paths) {
            record.AddList(path.points);
            for (const std::vector<int>* const list :
                 {&path.methods, &path.lengths, &path.widths, &path.spaces})
                record.AddList(*list);
        }
        record.Finish();
    }
};

EditJournal::EditJournal(KeptCopies& keeping) : EditJournal(keeping, [] { return std::time(nullptr); }) {
}

EditJournal::EditJournal(KeptCopies& keeping, Clock clock) : copies(keeping), clock(std::move(clock)) {
}

EditJournal::~EditJournal() {
    FileFacts facts;
    // The lock's file is removed with the journal; it has no use alone.
    if (own && own->folder.Ask(own->name, &facts) == std::errc::no_such_file_or_directory)
        static_cast<void>(own->folder.RemoveFile(LockOf(own->name)));
}

void EditJournal::Write(const std::string& track, const QSize& map, const std::vector<TrackPath>& paths) try {
    const std::string place = AbsolutePath(track);
    Open();
    WriteKeptFile(own->folder, own->name, Durability::OfProcess, [&](const auto& sink) {
        Entry::Write(KeptRecordWriter(sink, kMagic, kVersion), place, map, paths);
    });
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Failed to write the edit journal in " << copies.Folder() << ": " << failure.what();
}

void EditJournal::Discard() try {
    if (own)
        RemoveKeptFile(own->folder, own->name);
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Failed to remove the edit journal in " << copies.Folder() << ": " << failure.what();
}

/// Takes an unused name before the journal exists.
void EditJournal::Open() {
    FileFacts facts;
    if (own && !own->folder.Ask(LockOf(own->name), &facts))
        return;
    own.reset(); // the folder was removed, or emptied
    while (!own) {
        FolderHandle folder = OpenKeptFolder(copies.Folder());
        std::string name = RandomName(kPrefix);
        FileLock lock(folder, LockOf(name));
        if (lock.Result() == FileLock::State::Failed)
            throw std::system_error(lock.Failure());
        // Otherwise another editor, which is starting, tests the new lock: try another name.
        if (lock.Result() == FileLock::State::Taken)
            own.emplace(Own{std::move(folder), std::move(name), std::move(lock)});
    }
}

void EditJournal::Recover(const MakeTrack& makeTrack) try {
    const auto folder = OpenExistingKeptFolder(copies.Folder());
    if (!folder)
        return;
    for (const std::string& name : JournalsIn(*folder)) {
        const FileLock lock(*folder, LockOf(name));
        if (lock.Result() == FileLock::State::Taken) {
            RecoverOne(*folder, name, makeTrack);
            RemoveKeptFile(*folder, LockOf(name));
        } else if (lock.Result() == FileLock::State::Failed) {
            LOG_LINE(ERROR) << "Failed to lock the edit journal " << name << ": " << lock.Failure().message();
        }
    }
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Failed to read the edit journals in " << copies.Folder() << ": " << failure.what();
}

void EditJournal::RecoverOne(const FolderHandle& folder, const std::string& name,
                             const MakeTrack& makeTrack) try {
    const auto content = ReadKeptFile(folder, name);
    if (content && KeepEntry(Entry::Read(*content), makeTrack))
        RemoveKeptFile(folder, name);
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Ignored the edit journal " << name << " in " << copies.Folder() << ": "
                    << failure.what();
    constexpr std::int64_t kMaxAge = std::int64_t{30} * 24 * 60 * 60;
    FileFacts facts;
    if (!folder.Ask(name, &facts) && clock() - facts.modified > kMaxAge)
        static_cast<void>(folder.RemoveFile(name));
}

bool EditJournal::KeepEntry(const Entry& entry, const MakeTrack& makeTrack) {
    LOG_LINE(INFO) << "Recovering unsaved paths of " << entry.track;
    const auto asTrack = [&](const std::string& target) {
        return makeTrack(entry.track, target, entry.paths);
    };
    if (HasMap(entry.track, entry.map) && copies.KeepWritten(entry.track, KeptReason::Crash, asTrack))
        return true;
    const auto alone = [&](const std::string& target) {
        return WriteCsvPathsAlone(target, entry.paths) == 0;
    };
    return copies.KeepWritten(entry.track, KeptReason::Crash, alone, ".csv").has_value();
}
