#pragma once

#include "DiskUser.h"
#include "RandomChoice.h"
#include "StressWindow.h"

#include <string>

/// The operations on files: whatever is saved is read back.
class FileUser {
  public:
    FileUser(StressWindow& stress, RandomChoice& random, DiskUser& disk)
        : stress(stress), random(random), disk(disk) {}

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

    StressWindow& stress;
    RandomChoice& random;
    DiskUser& disk;
};
