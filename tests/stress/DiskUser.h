#pragma once

#include "RandomChoice.h"
#include "StressWindow.h"

#include <map>
#include <string>
#include <vector>

/// The files around the window, and another program that changes tracks while they are open.
class DiskUser {
  public:
    DiskUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    /// Creates the server's folder "station", backups and tracks, good and damaged ones.
    void makeFiles();
    /// The map of every track.
    static const independent::Track& Map();
    /// The names with which a dialog for tracks may be answered; an empty one cancels it.
    [[nodiscard]] const std::vector<std::string>& externals() const { return namesForDialogs; }

    /// Another program deletes, damages or replaces a track of the workspace.
    void changeBehindItsBack();
    /// Checks that protected files are unchanged and that no temporary files remain.
    void checkFilesAlone();

  private:
    independent::Track randomTrack();
    std::string randomTrackFile();

    StressWindow& stress;
    RandomChoice& random;
    std::vector<std::string> namesForDialogs;
    std::map<std::string, std::string> owned; ///< protected files and their contents
};
