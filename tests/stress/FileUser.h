#pragma once

#include "DiskUser.h"
#include "RandomChoice.h"
#include "StressWindow.h"

#include <string>

/// Operates the file lists; every saved file is read back.
class FileUser {
  public:
    FileUser(StressWindow& stress, RandomChoice& random, DiskUser& disk)
        : stress(stress), random(random), disk(disk) {}

    void chooseFile();
    /// Keys that select an item while the list is closed; a resulting dialog is cancelled.
    void pressKeyOnOperations();
    void operateOnFile();
    /// "Load", possibly through a dialog.
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
