#pragma once

#include <set>
#include <string>

class KeptCopies;

/// The tracks of the unpacked workspace that were saved since it was unpacked, and that were neither sent to
/// a server nor packed into a backup file. To survive a crash they are also in a small private file in the
/// folder of kept copies, one for each workspace folder; the constructor reads them from there. Failures are
/// logged, and nothing is thrown. For one thread.
class UnsentTracks final {
  public:
    /// @param keeping keeps the copies, and its folder the file; outlives this object
    /// @param workspace the workspace's folder, which identifies the file
    /// @param trackFolder the folder of its tracks
    UnsentTracks(KeptCopies& keeping, const std::string& workspace, std::string trackFolder);

    /// A track of this file name is about to be saved.
    void Record(const std::string& name);
    /// A track was deleted.
    void Forget(const std::string& name);
    /// All tracks were sent, or packed.
    void Clear();

    [[nodiscard]] const std::set<std::string>& Names() const { return names; }
    [[nodiscard]] bool IsEmpty() const { return names.empty(); }

    /// The workspace is about to be replaced or removed: keeps each of its tracks that were not sent, if it
    /// still exists, and forgets all.
    void Keep();

  private:
    void Read();
    void Store();

    KeptCopies& copies;
    const std::string workspace; ///< an absolute path
    const std::string tracks;
    const std::string file; ///< its name in the folder of kept copies
    std::set<std::string> names;
};
