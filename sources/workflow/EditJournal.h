#pragma once

#include "basalt/FileLock.h"
#include "basalt/FolderHandle.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class KeptCopies;

/// Keeps the paths of the open track, while they are not saved, in a small private file in the folder of kept
/// copies, so that a crash loses no more than what came after the last Write. Each running editor has its own
/// file, which a system lock marks as used until the editor ends, however it ends; the next start makes kept
/// copies of unused ones. Failures are logged, and nothing is thrown. For one thread.
class EditJournal final {
  public:
    /// Returns the time, in seconds since 1970.
    using Clock = std::function<std::time_t()>;
    /// Writes the track `original` with these paths, which have no ruler marks, as `target`, which exists and
    /// is empty.
    /// @return whether it did
    using MakeTrack = std::function<bool(const std::string& original, const std::string& target,
                                         const std::vector<TrackPath>& paths)>;

    /// @param keeping keeps the copies, and its folder the journals; outlives this object
    explicit EditJournal(KeptCopies& keeping);
    EditJournal(KeptCopies& keeping, Clock clock);
    EditJournal(const EditJournal&) = delete;
    EditJournal& operator=(const EditJournal&) = delete;
    /// What was not discarded remains for the next start.
    ~EditJournal();

    /// Puts the paths in the journal, in place of those before. They survive the end of the program, not a
    /// power failure: nothing waits for the disk.
    /// @param track the path of the track's file
    /// @param map the size of its height map, in cells
    void Write(const std::string& track, const QSize& map, const std::vector<TrackPath>& paths);

    /// The paths were saved or discarded.
    void Discard();

    /// Makes crash copies of the journals that no running editor uses, and removes those. A copy is a
    /// complete track if the track still exists with a height map of the same size and `makeTrack` succeeds;
    /// otherwise a text file of the paths alone. A journal that cannot be read is left for 30 days, then
    /// removed.
    void Recover(const MakeTrack& makeTrack);

  private:
    /// What a running editor holds for its journal.
    struct Own {
        FolderHandle folder;
        std::string name; ///< of the journal; the lock's is longer
        FileLock lock;
    };
    struct Entry;

    void Open();
    void RecoverOne(const FolderHandle& folder, const std::string& name, const MakeTrack& makeTrack);
    bool KeepEntry(const Entry& entry, const MakeTrack& makeTrack);

    KeptCopies& copies;
    Clock clock;
    std::optional<Own> own; ///< from the first Write on
};
