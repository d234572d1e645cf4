#pragma once

#include "OstraServerProcess.h"
#include "RandomChoice.h"
#include "StressWindow.h"

#include <optional>

/// Where the tracks come from: backups and a server, which is killed now and then and comes back.
class SourceUser {
  public:
    SourceUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    /// Starts the server of "station" and opens the window beside it.
    void open();
    /// The shortest way from where the window stands to an open source.
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
    bool serverMoved = false; ///< the window's list of servers is not true any more
};
