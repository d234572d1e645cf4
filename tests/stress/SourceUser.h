#pragma once

#include "OstraServerProcess.h"
#include "RandomChoice.h"
#include "StressWindow.h"

#include <optional>

/// Operates the sources: backups and a server, which is killed and restarted now and then.
class SourceUser {
  public:
    SourceUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    /// Starts the server of "station" and opens the window.
    void open();
    /// The shortest way from the current state of the window to an open source.
    void openSource();
    void chooseSource();
    void pressSensorButton();
    void upload();
    void reset();
    void killOrRestartServer();
    void reopenWindow();

  private:
    void pressInSourceList(Qt::Key key);

    StressWindow& stress;
    RandomChoice& random;
    std::optional<OstraServerProcess> server;
    bool serverAway = false;
    bool serverMoved = false; ///< the window's list of servers is outdated
};
