#pragma once

#include "Stage.h"
#include "document/formats/TrackPath.h"

#include <string>
#include <vector>

/// The complete work of an operator. Each scenario prints its steps and throws when one fails. The working
/// directory holds "station.osbak" and "fault.trk", which are edited.
class Tour {
  public:
    /// @param workspace the folder that the sensor server on loopback serves
    Tour(Stage& stage, std::string workspace);

    /// Runs every scenario; called from the tour's thread.
    void Run();

    /// Edits a backup file and a track with a very long name, which may look different on another desktop,
    /// and checks that the window stays on the screen. Called from the tour's thread.
    void RunMainScenario();

  private:
    void EditABackupFile();
    /// @param name the file of the text track
    void EditAnExternalTrack(const std::string& name);
    void EditAServersWorkspace();

    void Load(const QString& name);
    void DrawAPath();
    void DragItsLastPoint();
    void SetParameters();
    void HideAndShowTheRuler();
    /// Saves, and compares the file with the canvas, then the canvas with the file loaded again.
    void SaveAndReload(const QString& name);
    void WaitForStatus(const QString& text) const;

    Stage& stage;
    std::string workspace;
};
