#pragma once

#include "RandomChoice.h"
#include "StressWindow.h"

#include <map>
#include <string>
#include <vector>

/// The files that the window is opened beside, and another program that changes tracks behind its back.
class DiskUser {
  public:
    DiskUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    /// Makes the server's folder "station", backups and tracks, good and damaged ones.
    void makeFiles();
    /// The map that every one of the tracks has.
    static const independent::Track& Map();
    /// The names that a dialog for tracks may be told; an empty one cancels it.
    [[nodiscard]] const std::vector<std::string>& externals() const { return namesForDialogs; }

    /// Another program deletes, damages or replaces a track of the workspace.
    void changeBehindItsBack();
    /// That nothing has changed which nothing may change, and nothing half-done lies about.
    void checkFilesAlone();

  private:
    independent::Track randomTrack();
    std::string randomTrackFile();

    StressWindow& stress;
    RandomChoice& random;
    std::vector<std::string> namesForDialogs;
    std::map<std::string, std::string> owned; ///< files that nothing may change, and their contents
};
