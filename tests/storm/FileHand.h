#pragma once

#include "DiskHand.h"
#include "RandomChoice.h"
#include "StormWindow.h"

#include <string>

/// The operations on files: whatever is saved is read back.
class FileHand {
  public:
    FileHand(StormWindow& storm, RandomChoice& random, DiskHand& disk)
        : storm(storm), random(random), disk(disk) {}

    void chooseFile();
    /// Keys that choose without the list's being open; a dialog that comes of it is cancelled.
    void pressKeyOnOperations();
    void operateOnFile();
    /// "Load", be it by a dialog.
    void load();

  private:
    void operate(const std::string& operation);
    void loadSavedAgain();
    void checkSaved(const std::string& path);
    bool externalIsChosen();

    StormWindow& storm;
    RandomChoice& random;
    DiskHand& disk;
};
