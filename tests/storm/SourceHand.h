#pragma once

#include "OstraServerProcess.h"
#include "RandomChoice.h"
#include "StormWindow.h"

#include <optional>

/// Where the tracks come from: backups and a server, which is killed now and then and comes back.
class SourceHand {
  public:
    SourceHand(StormWindow& storm, RandomChoice& random) : storm(storm), random(random) {}

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

    StormWindow& storm;
    RandomChoice& random;
    std::optional<OstraServerProcess> server;
    bool serverAway = false;
    bool serverMoved = false; ///< the window's list of servers is not true any more
};
